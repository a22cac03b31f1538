import { testServer } from "./lib/serverTests.js";

testServer("master");
