#include "tests/faces/page_prelude.h"

namespace Vantrel::Web::Faces {

const char* const kPrelude = R"js(
var answer = null;    // what the case has seen, once it has
var wait = {};        // returned by a case that answers later
var seen = [];        // for cases that gather events

function render(value) {
  if (value === undefined || value === null) return String(value);
  if (typeof value === "string") return '"' + value + '"';
  return typeof value === "object" || typeof value === "function" ? "an object" : String(value);
}

// The codes by which an interface refuses a call, and the words that browsers have for it.
function isRefusal(error) {
  var code = (error.number || 0) >>> 0;
  return error.message === "Error calling method on NPObject!" || code === 0x800A01B6 ||
         (code >= 0x80020003 && code <= 0x8002000F && code !== 0x80020009);
}

function runCase(body) {
  answer = null;
  seen = [];
  try {
    var value = body();
    if (value !== wait) answer = render(value);
  } catch (error) {
    answer = isRefusal(error) ? "refused" : "error: " + error.message;
  }
}

function done(value) { answer = render(value); }

// As a page gets paths: in a list that colons divide, and in JSON.
function escaped(path) { return path.replace(/[\\:]/g, "\\$&"); }
function quoted(path) { return '"' + path.replace(/\\/g, "\\\\") + '"'; }

function errorReply(text) {
  return '{"error":{"code":-1,"internal_message":"Invalid request","user_message":"' + text + '"}}';
}
)js";

}  // namespace Vantrel::Web::Faces
