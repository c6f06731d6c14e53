// Splitting of command lines and of delimited text.
#include <cstdlib>
#include <cstring>
#include <memory>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/errors/asserts.h"

namespace {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

constexpr int32_t kTokenLimit = 1000;

// Moves one token from *text to *out, terminated; false for a quote left open.
bool take_token(const char** text, char** out) {
  const char* from = *text;
  const char quote = *from == '"' || *from == '\'' ? *from++ : ' ';
  const char* end = std::strchr(from, quote);
  if (end == nullptr && quote != ' ') return false;
  const size_t length = end != nullptr ? static_cast<size_t>(end - from) : std::strlen(from);
  std::memcpy(*out, from, length);
  (*out)[length] = 0;
  *out += length + 1;
  *text = from + length + (end != nullptr ? 1 : 0);
  return true;
}

}  // namespace

ov_rc ov_str_tokenize(const char* text, char*** argv, int32_t* argc) {
  if (argv != nullptr) *argv = nullptr;
  if (argc != nullptr) *argc = 0;
  // Every null argument is counted, so none may be skipped by a short cut.
  int missing = 0;
  for (const void* argument : {static_cast<const void*>(text), static_cast<const void*>(argv),
                               static_cast<const void*>(argc)}) {
    if (!ov::assert_not_null(argument)) ++missing;
  }
  if (missing > 0) return OV_EINVAL;
  // Each token is shorter by a blank or a quote than its source, but for a last unquoted one.
  std::unique_ptr<char, FreeMemory> block(static_cast<char*>(std::malloc(std::strlen(text) + 1)));
  if (!block) return OV_ENOMEM;
  char* tokens[kTokenLimit];
  int32_t count = 0;
  char* out = block.get();
  for (;;) {
    text += std::strspn(text, " ");
    if (*text == 0) break;
    tokens[count] = out;
    if (++count == kTokenLimit || !take_token(&text, &out)) return OV_ETOKENIZER;
  }
  if (count == 0) return 0;
  const size_t bytes = static_cast<size_t>(count) * sizeof *tokens;
  char** list = static_cast<char**>(std::malloc(bytes));
  if (list == nullptr) return OV_ENOMEM;
  std::memcpy(list, tokens, bytes);
  list[0] = block.release();
  *argv = list;
  *argc = count;
  return 0;
}

void ov_str_tokcleanup(char** argv) {
  if (argv == nullptr) return;
  std::free(argv[0]);
  std::free(argv);
}

char* ov_str_tok(char* text, const char* delimiters, char** context) {
  if (delimiters == nullptr || context == nullptr) return nullptr;
  char* token = text != nullptr ? text : *context;
  if (token == nullptr) return nullptr;
  token += std::strspn(token, delimiters);
  char* end = token + std::strcspn(token, delimiters);
  const bool more = *end != 0;
  *end = 0;
  *context = more ? end + 1 : end;
  return end == token ? nullptr : token;
}
