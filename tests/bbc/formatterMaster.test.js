import { testFormatter } from "./lib/formatterTests.js";

testFormatter("master");
