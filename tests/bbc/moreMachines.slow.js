// The transfer and the formatter on a machine besides the two on which they are always tested.

import { testFormatter } from "./lib/formatterTests.js";
import { testSbx } from "./lib/sbxTests.js";
import { testServer } from "./lib/serverTests.js";

testServer("modelBPlus");
testFormatter("modelBPlus");
testSbx("modelBPlus");
