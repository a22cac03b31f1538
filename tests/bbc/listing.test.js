import assert from "node:assert/strict";
import { test } from "node:test";
import { listingLines } from "./lib/TransferServer.js";

test("EveryLineOfTheListingCanBeTypedIn", () => {
  let last = 0;
  for (const line of listingLines()) {
    assert.ok(line.length < 230, line);
    assert.match(line, /^ *\d+[\x20-\x7e]*$/);
    const number = Number.parseInt(line, 10);
    assert.ok(number > last && number < 32768, line);
    last = number;
  }
});
