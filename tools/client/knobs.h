// The settings of the stand-in client: where it works, how fast it copies, and how it misbehaves.
//
// A plain record, filled once at start and then only read, from any thread. Every field is one
// knob; knobTable() names them all and is what the parser, the tests and the manual go by.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Vantrel::StandIn {

using Positions = std::vector<std::int64_t>;

struct Knobs {
  // Where it works. Empty paths mean the defaults told in the manual.
  std::string dataDir;
  std::string remoteRoot;
  std::string downloadRoot;
  std::string record;
  std::int64_t port = 0;
  std::string uriFile = "key";
  bool keepFiles = false;

  // How it copies and reports.
  std::int64_t chunkBytes = 65536;
  std::int64_t chunkPauseMs = 60;
  std::int64_t transferFailAt = -1;
  std::string activityToken = "string";

  // When it ends.
  std::int64_t idleSeconds = 300;
  std::int64_t exitAfterMs = 0;
  std::int64_t exitAfterRequests = 0;
  std::int64_t exitCode = 0;

  // How it starts badly.
  std::int64_t slowStartMs = 0;
  std::int64_t exitAtStart = -1;

  // Which requests are answered badly.
  std::string misbehavePath;
  std::int64_t misbehaveSkip = 0;
  std::int64_t misbehaveCount = 0;

  // How they are answered badly.
  std::int64_t restartAfter = 0;
  bool silent = false;
  bool closeWithoutReply = false;
  std::int64_t delayMs = 0;
  Positions splitAt;
  std::int64_t splitEvery = 0;
  std::int64_t splitPauseMs = 5;
  bool noLength = false;
  std::int64_t lengthDelta = 0;
  std::optional<std::string> lengthText;
  std::string lengthLabel = "Content-Length";
  std::optional<std::string> statusLine;
  std::optional<std::string> headerLine;
  std::int64_t status = 0;
  std::int64_t hugeBody = 0;
  std::int64_t nulAt = -1;
  std::optional<std::string> body;
  std::optional<std::string> errorReply;
};

// What a knob's value looks like.
enum class KnobForm {
  kFlag,       // 0 or 1
  kNumber,     // a decimal number between `low` and `high`
  kPositions,  // decimal numbers with commas between them
  kText,       // the rest of the line; \n \r \t \0 and \\ are understood
  kPath,       // a path; a relative one counts from the folder of its file
  kChoice,     // one of `choices`
};

struct KnobEntry {
  std::string_view name;
  KnobForm form;
  std::variant<bool Knobs::*, std::int64_t Knobs::*, Positions Knobs::*, std::string Knobs::*,
               std::optional<std::string> Knobs::*>
      field;
  std::int64_t low = 0;
  std::int64_t high = 0;
  std::string_view choices = {};  // with bars between them
};

// All knobs, in the order of the manual.
const std::vector<KnobEntry>& knobTable();

// Sets one knob. `folder` is put in front of a relative path unless it is empty. Returns the empty
// text, or what is wrong with the name or the value.
std::string setKnob(Knobs& knobs, std::string_view name, std::string_view value,
                    std::string_view folder);

// Reads a configuration file's text: lines `name=value`; empty lines and lines that begin with '#'
// are skipped. Stops at the first fault and returns it with its line number, else the empty text.
std::string readKnobs(Knobs& knobs, std::string_view text, std::string_view folder);

// Sets the knob that a command line argument `--name=value` tells. Errors as setKnob.
std::string readArgument(Knobs& knobs, std::string_view argument);

}  // namespace Vantrel::StandIn
