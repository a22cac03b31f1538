import { testFormatter } from "./lib/formatterTests.js";

testFormatter("modelB");
