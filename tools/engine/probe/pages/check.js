// Prints "ok NAME" or "FAIL NAME ..."; the test ends the run at the first FAIL.
function check(name, got, want) {
  if (got === want) console.log("ok " + name);
  else console.log("FAIL " + name + ": got " + got + ", want " + want);
}
function thrownBy(action) {
  try { action(); } catch (e) { return "" + e; }
  return "nothing";
}
