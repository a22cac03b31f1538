#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace sectorbox::testing {

// While it lives, this process has only the rights of an ordinary user; the superuser could read
// and write everywhere. Folders that such a user has to pass must be open to all users.
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
