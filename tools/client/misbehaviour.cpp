#include "tools/client/misbehaviour.h"

#include <algorithm>

#include "tools/client/json_text.h"

namespace Vantrel::StandIn {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string statusLineOf(int status) {
  return "HTTP/1.1 " + std::to_string(status) + " " + std::string(reasonPhrase(status));
}

// Fills an object up to `bytes` with a member of its own, so that it stays JSON; a body that is
// no object, or is longer already, stays as it is.
std::string hugeForm(const std::string& body, size_t bytes) {
  constexpr std::string_view kFillerStart = "{\"filler\":\"";
  constexpr std::string_view kFillerEnd = "\"";
  if (!body.starts_with('{')) return body;
  std::string rest = body == "{}" ? "}" : "," + body.substr(1);
  size_t fixed = kFillerStart.size() + kFillerEnd.size() + rest.size();
  if (bytes < fixed) return body;
  std::string huge(kFillerStart);
  huge.reserve(bytes);
  huge.append(bytes - fixed, 'x');
  huge += kFillerEnd;
  huge += rest;
  return huge;
}

ServiceReply shapedReply(const ServiceReply& reply, const Knobs& knobs) {
  ServiceReply shaped = reply;
  if (knobs.errorReply) shaped = errorReply(reply.status, "Stand-in", *knobs.errorReply);
  if (knobs.body) shaped.body = *knobs.body;
  if (knobs.status > 0) shaped.status = static_cast<int>(knobs.status);
  if (knobs.hugeBody > 0) shaped.body = hugeForm(shaped.body, static_cast<size_t>(knobs.hugeBody));
  if (knobs.nulAt >= 0)
    shaped.body.insert(std::min(static_cast<size_t>(knobs.nulAt), shaped.body.size()), 1, '\0');
  return shaped;
}

std::string lengthLine(const ServiceReply& reply, const Knobs& knobs) {
  if (knobs.noLength) return {};
  std::int64_t length = static_cast<std::int64_t>(reply.body.size()) + knobs.lengthDelta;
  std::string text = knobs.lengthText.value_or(std::to_string(length));
  return knobs.lengthLabel + ": " + text + std::string(kLineEnd);
}

std::string replyBytes(const ServiceReply& reply, const Knobs& knobs) {
  std::string bytes = knobs.statusLine.value_or(statusLineOf(reply.status));
  bytes += kLineEnd;
  if (knobs.headerLine) bytes += *knobs.headerLine + std::string(kLineEnd);
  bytes += "Connection: close\r\n";
  bytes += lengthLine(reply, knobs);
  bytes += "Content-Type: application/json\r\n\r\n";
  bytes += reply.body;
  return bytes;
}

// The places where a reply of that many bytes is cut, in order.
std::vector<size_t> cutsOf(size_t bytes, const Knobs& knobs) {
  std::vector<size_t> cuts;
  for (std::int64_t position : knobs.splitAt) cuts.push_back(static_cast<size_t>(position));
  auto every = static_cast<size_t>(knobs.splitEvery);
  for (size_t at = every; every > 0 && at < bytes; at += every) cuts.push_back(at);
  std::erase_if(cuts, [&](size_t cut) { return cut == 0 || cut >= bytes; });
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
  return cuts;
}

std::vector<std::string> cutUp(const std::string& bytes, const Knobs& knobs) {
  std::vector<std::string> pieces;
  size_t start = 0;
  for (size_t cut : cutsOf(bytes.size(), knobs)) {
    pieces.push_back(bytes.substr(start, cut - start));
    start = cut;
  }
  pieces.push_back(bytes.substr(start));
  return pieces;
}

}  // namespace

MisbehaviourGate::Verdict MisbehaviourGate::judge(std::string_view path) {
  if (!knobs_.misbehavePath.empty() && path != knobs_.misbehavePath) return {};
  std::lock_guard lock(mutex_);
  std::int64_t number = ++aimedAt_;
  std::int64_t last = knobs_.misbehaveSkip + knobs_.misbehaveCount;
  Verdict verdict;
  verdict.misbehave =
      number > knobs_.misbehaveSkip && (knobs_.misbehaveCount == 0 || number <= last);
  verdict.restart = number == knobs_.restartAfter;
  verdict.exit = number == knobs_.exitAfterRequests;
  return verdict;
}

ReplyPlan honestPlan(const ServiceReply& reply) {
  static const Knobs none;
  ReplyPlan plan;
  plan.pieces.push_back(replyBytes(reply, none));
  return plan;
}

ReplyPlan misbehavedPlan(const ServiceReply& reply, const Knobs& knobs) {
  ReplyPlan plan;
  plan.delayMs = knobs.delayMs;
  plan.silent = knobs.silent;
  plan.pauseMs = knobs.splitPauseMs;
  if (!knobs.silent && !knobs.closeWithoutReply)
    plan.pieces = cutUp(replyBytes(shapedReply(reply, knobs), knobs), knobs);
  return plan;
}

}  // namespace Vantrel::StandIn
