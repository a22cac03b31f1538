import { testSbx } from "./lib/sbxTests.js";

testSbx("master");
