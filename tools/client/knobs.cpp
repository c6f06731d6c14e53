#include "tools/client/knobs.h"

#include <algorithm>
#include <charconv>

#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

constexpr std::int64_t kMostMs = 86400000;  // a day
constexpr std::int64_t kMostBytes = std::int64_t{1} << 32;
constexpr std::int64_t kMostRequests = 1000000000;

bool readNumber(std::string_view text, std::int64_t& number) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const char* end = text.data() + text.size();
  auto result = std::from_chars(text.data(), end, number);
  return !text.empty() && result.ec == std::errc() && result.ptr == end;
}

bool readPositions(std::string_view text, Positions& positions) {
  positions.clear();
  while (true) {
    size_t comma = text.find(',');
    std::int64_t number = 0;
    if (!readNumber(text.substr(0, comma), number) || number < 0) return false;
    positions.push_back(number);
    if (comma == std::string_view::npos) return true;
    text.remove_prefix(comma + 1);
  }
}

char escapedByte(char letter) {
  switch (letter) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case '0':
      return '\0';
    default:
      return letter;
  }
}

std::string withoutEscapes(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    bool escape = text[i] == '\\' && i + 1 < text.size();
    plain += escape ? escapedByte(text[++i]) : text[i];
  }
  return plain;
}

bool isChoice(std::string_view choices, std::string_view value) {
  while (true) {
    size_t bar = choices.find('|');
    if (choices.substr(0, bar) == value) return true;
    if (bar == std::string_view::npos) return false;
    choices.remove_prefix(bar + 1);
  }
}

void setText(Knobs& knobs, const KnobEntry& entry, std::string text) {
  if (const auto* field = std::get_if<std::string Knobs::*>(&entry.field)) knobs.*(*field) = text;
  if (const auto* field = std::get_if<std::optional<std::string> Knobs::*>(&entry.field))
    knobs.*(*field) = std::move(text);
}

// Each returns whether the value suits the knob.
bool setValue(Knobs& knobs, const KnobEntry& entry, std::string_view value,
              std::string_view folder) {
  std::int64_t number = 0;
  switch (entry.form) {
    case KnobForm::kFlag:
      knobs.*std::get<bool Knobs::*>(entry.field) = value == "1";
      return value == "0" || value == "1";
    case KnobForm::kNumber:
      if (!readNumber(value, number) || number < entry.low || number > entry.high) return false;
      knobs.*std::get<std::int64_t Knobs::*>(entry.field) = number;
      return true;
    case KnobForm::kPositions:
      return readPositions(value, knobs.*std::get<Positions Knobs::*>(entry.field));
    case KnobForm::kText:
      setText(knobs, entry, withoutEscapes(value));
      return true;
    case KnobForm::kPath:
      setText(knobs, entry, pathBelowFolder(folder, value));
      return true;
    case KnobForm::kChoice:
      if (!isChoice(entry.choices, value)) return false;
      setText(knobs, entry, std::string(value));
      return true;
  }
  return false;
}

}  // namespace

const std::vector<KnobEntry>& knobTable() {
  using enum KnobForm;
  static const std::vector<KnobEntry> table = {
      {"data_dir", kPath, &Knobs::dataDir},
      {"remote_root", kPath, &Knobs::remoteRoot},
      {"download_root", kPath, &Knobs::downloadRoot},
      {"record", kPath, &Knobs::record},
      {"port", kNumber, &Knobs::port, 0, 65535},
      {"uri_file", kChoice, &Knobs::uriFile, 0, 0, "key|key_lf|url_only|none"},
      {"keep_files", kFlag, &Knobs::keepFiles},

      {"chunk_bytes", kNumber, &Knobs::chunkBytes, 1, std::int64_t{1} << 26},
      {"chunk_pause_ms", kNumber, &Knobs::chunkPauseMs, 0, kMostMs},
      {"transfer_fail_at", kNumber, &Knobs::transferFailAt, 0, kMostBytes},
      {"activity_token", kChoice, &Knobs::activityToken, 0, 0, "string|number|none"},

      {"idle_seconds", kNumber, &Knobs::idleSeconds, 0, kMostMs / 1000},
      {"exit_after_ms", kNumber, &Knobs::exitAfterMs, 0, kMostMs},
      {"exit_after_requests", kNumber, &Knobs::exitAfterRequests, 0, kMostRequests},
      {"exit_code", kNumber, &Knobs::exitCode, 0, 255},

      {"slow_start_ms", kNumber, &Knobs::slowStartMs, 0, kMostMs},
      {"exit_at_start", kNumber, &Knobs::exitAtStart, 0, 255},

      {"misbehave_path", kText, &Knobs::misbehavePath},
      {"misbehave_skip", kNumber, &Knobs::misbehaveSkip, 0, kMostRequests},
      {"misbehave_count", kNumber, &Knobs::misbehaveCount, 0, kMostRequests},

      {"restart_after", kNumber, &Knobs::restartAfter, 0, kMostRequests},
      {"silent", kFlag, &Knobs::silent},
      {"close_without_reply", kFlag, &Knobs::closeWithoutReply},
      {"delay_ms", kNumber, &Knobs::delayMs, 0, kMostMs},
      {"split_at", kPositions, &Knobs::splitAt},
      {"split_every", kNumber, &Knobs::splitEvery, 0, kMostBytes},
      {"split_pause_ms", kNumber, &Knobs::splitPauseMs, 0, kMostMs},
      {"no_length", kFlag, &Knobs::noLength},
      {"length_delta", kNumber, &Knobs::lengthDelta, -kMostBytes, kMostBytes},
      {"length_text", kText, &Knobs::lengthText},
      {"length_label", kText, &Knobs::lengthLabel},
      {"status_line", kText, &Knobs::statusLine},
      {"header_line", kText, &Knobs::headerLine},
      {"status", kNumber, &Knobs::status, 0, 999},
      {"huge_body", kNumber, &Knobs::hugeBody, 0, kMostBytes},
      {"nul_at", kNumber, &Knobs::nulAt, 0, kMostBytes},
      {"body", kText, &Knobs::body},
      {"error_reply", kText, &Knobs::errorReply},
  };
  return table;
}

std::string setKnob(Knobs& knobs, std::string_view name, std::string_view value,
                    std::string_view folder) {
  const auto& table = knobTable();
  auto entry = std::find_if(table.begin(), table.end(),
                            [&](const KnobEntry& candidate) { return candidate.name == name; });
  if (entry == table.end()) return "unknown knob: " + std::string(name);
  if (!setValue(knobs, *entry, value, folder))
    return "bad value of " + std::string(name) + ": " + std::string(value);
  return {};
}

std::string readKnobs(Knobs& knobs, std::string_view text, std::string_view folder) {
  int lineNumber = 0;
  while (!text.empty()) {
    size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    ++lineNumber;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.front() == '#') continue;
    size_t equals = line.find('=');
    std::string fault = "no equals sign";
    if (equals != std::string_view::npos)
      fault = setKnob(knobs, line.substr(0, equals), line.substr(equals + 1), folder);
    if (!fault.empty()) return "line " + std::to_string(lineNumber) + ": " + fault;
  }
  return {};
}

std::string readArgument(Knobs& knobs, std::string_view argument) {
  size_t equals = argument.find('=');
  if (!argument.starts_with("--") || equals == std::string_view::npos)
    return "not of the form --name=value: " + std::string(argument);
  return setKnob(knobs, argument.substr(2, equals - 2), argument.substr(equals + 1), {});
}

}  // namespace Vantrel::StandIn
