#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace sectorbox::testing {

// While it lives, this process has no more rights than any user: the superuser may read and write
// everywhere. Folders on the way to what such a user is to reach have to be open to all.
class OrdinaryUser {
 public:
  OrdinaryUser() {
    if (super_ && ::seteuid(65534) != 0) ADD_FAILURE() << "still the superuser";
  }
  ~OrdinaryUser() {
    if (super_ && ::seteuid(0) != 0) ADD_FAILURE() << "not the superuser again";
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  bool super_ = ::geteuid() == 0;
};

}  // namespace sectorbox::testing
