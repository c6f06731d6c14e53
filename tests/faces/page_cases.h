// What a page may do with the plug-in and what it then sees, the same table for both faces. Where
// they differ the case says by which of the known differences; there are no others.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Vantrel::Web::Faces {

// What a page may see differ, each by a rule of its interface.
enum class Difference {
  kNone,
  // "Gecko" or "MSHTML".
  kEngineName,
  // A wrong argument is refused, or converted by the platform as for any control.
  kWrongArguments,
  // Further arguments are ignored by some methods, or refused.
  kFurtherArguments,
  // A number that is not whole is cut, or refused without a script error.
  kNumbersOfChunks,
  // What a method answers that has nothing to say: null, or an empty text, or nothing.
  kNothingToSay,
  // A start that fails is in the log alone, or a script error too.
  kFailedStart,
  // Reading the handler back gives it, or null.
  kReadingTheHandler,
  // A handler that was set to null is still called, or not any more.
  kClearedHandler,
  // There is an observer of drops, or there are connection events in its place.
  kDropObserver,
  // An argument of handleDrop is looked at, or not.
  kHandleDrop,
  // Drags over the element are events, or not.
  kDragEvents,
  // An exception without words of its own comes from another place.
  kUnreadablePath,
};

struct PageCase {
  const char* name;
  // The body of a function. It returns what the page sees, or the global `wait` when the answer
  // comes later, through done(value).
  const char* script;
  // What is seen: a value as render() in the prelude writes it, "refused" for a call that the
  // interface does not take, "error: " and its text for a script error of the plug-in's own.
  const char* netscape;
  // Null for the same.
  const char* activeX = nullptr;
  Difference difference = Difference::kNone;
  // A part of the log that the case leaves, with either face.
  const char* log = nullptr;
};

// Cases that want the same world.
struct PageFamily {
  const char* name;
  // Whether a desktop client answers.
  bool client = true;
  std::vector<PageCase> cases;
};

const std::vector<PageFamily>& pageFamilies();
// Of these, the ones about the user's files and about events.
std::vector<PageFamily> fileFamilies();
const PageFamily& pageFamily(const std::string& name);

}  // namespace Vantrel::Web::Faces
