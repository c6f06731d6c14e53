// Paths and URIs from outside, against the same rules without economy.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/ov_uri.h"
#include "runtime/paths/internal.h"
#include "tests/support/runtime/paths_reference.h"

namespace {

using Result = std::optional<std::string>;

void check(bool holds) {
  if (!holds) std::abort();
}

void canonicalise(const std::string& path, size_t small) {
  const size_t ample = path.size() + 8;
  const Result expected = ov::reference::canonical(path);
  const auto out = std::make_unique<char[]>(ample);
  const bool good = ov_path_canonical_path(path.c_str(), out.get(), ample) == 0;
  check(expected ? good && *expected == out.get() : !good && out[0] == '\0');

  const auto same = std::make_unique<char[]>(ample);
  std::memcpy(same.get(), path.c_str(), path.size() + 1);
  check((ov_path_canonical_path(same.get(), same.get(), ample) == 0) == good);
  check(!good || *expected == same.get());

  const auto cut = std::make_unique<char[]>(small);
  if (ov_path_canonical_path(path.c_str(), cut.get(), small) != 0) return check(cut[0] == '\0');
  check(std::strlen(cut.get()) < small);
  const bool uri = ov_path_is_zept_uri(path.c_str()) != 0 || ov_uri_valid_uri(path.c_str()) != 0;
  check(uri ? expected->starts_with(cut.get()) : *expected == cut.get());
}

void append(const std::string& dir, const std::string& rel, size_t small) {
  const size_t ample = dir.size() + rel.size() + 8;
  const bool relative = ov::reference::isRelative(rel);
  const Result expected = ov::reference::append(dir, rel, relative);
  const auto out = std::make_unique<char[]>(ample);
  const bool good = ov_path_append(dir.c_str(), rel.c_str(), out.get(), ample) == 0;
  check(expected ? good && *expected == out.get() : !good);
  const auto cut = std::make_unique<char[]>(small);
  ov_path_append(dir.c_str(), rel.c_str(), cut.get(), small);
  check(ov_str_nlen(cut.get(), small) < small);
}

void widen(const std::string& path) {
  char text[ov::kWidenedSize];
  const char* changed = nullptr;
  const ov_rc error = ov::widened_text(path.c_str(), text, &changed);
  const Result expected = ov::reference::widened(path);
  check(expected ? error == 0 && *expected == (changed != nullptr ? changed : path.c_str())
                 : error == OV_EBUFFER);
  size_t bytes = 0;
  const ov_rc measured = ov_path_widen_path(path.c_str(), nullptr, &bytes);
  const bool valid = expected && ov_utf8_is_valid(expected->c_str(), SIZE_MAX) == 1;
  check(measured == (!expected ? OV_EBUFFER : valid ? OV_ERANGE : OV_EINVAL));
}

void split(const std::string& path) {
  char prefix[OV_PATH_SIZE];
  const char* rest = nullptr;
  const bool good = ov_path_extract_prefix(path.c_str(), prefix, &rest) == 0;
  const auto expected = ov::reference::splitRoot(path);
  if (!expected || expected->prefix.size() >= sizeof prefix) return check(!good);
  check(good && expected->prefix == prefix);
  check(rest == nullptr || (rest >= path.c_str() && rest <= path.c_str() + path.size()));
  check(ov::reference::split(rest != nullptr ? rest : "") == ov::reference::split(expected->rest));
}

void climb(const std::string& path) {
  char out[OV_PATH_SIZE] = "old";
  const int32_t length = ov_path_parent_dir(path.c_str(), out, sizeof out);
  const Result expected = ov::reference::parent(path);
  // What is joined has 523 bytes at most, and what is written on the way to the result 519: a root
  // may be longer than what was joined, as "//name" becomes the network path "//name/../".
  std::string joined = path + (path.ends_with('/') ? ".." : "/..");
  std::replace(joined.begin(), joined.end(), '\\', '/');
  const auto root = ov::reference::splitRoot(joined);
  const size_t written = root ? root->prefix.size() + root->rest.size() : 0;
  const bool uri = joined.size() < 524 && ov_uri_valid_uri(path.c_str()) != 0;
  const bool right =
      expected && length == static_cast<int32_t>(expected->size()) && *expected == out;
  if (expected && std::max(joined.size(), written) < sizeof out) {
    check(right);
  } else {
    check(uri || right || (length == -1 && out[0] == '\0'));
  }
  if (path.size() < 500) {
    check(ov::reference::leavesHome(path) == (ov_path_leaves_home_dir(path.c_str()) == 1));
  }
}

void walk(const std::string& prefix, const std::string& text) {
  const auto path = std::make_unique<ov_path>();
  ov_path_init(path.get());
  ov_str_ncpy(path->prefix, prefix.c_str(), sizeof path->prefix);
  ov_path_string_to_path(path.get(), text.c_str());
  const std::string expected = ov::reference::walked(path->prefix, text);
  std::vector<char> out(expected.size() + 1);
  check(ov_path_path_to_string(path.get(), out.data(), out.size()) == 0);
  check(expected == out.data());
  check(ov_path_path_to_string(path.get(), out.data(), out.size() - 1) == -1);
}

void separate(const std::string& path) {
  const char* const text = path.c_str();
  const char* const next = ov_path_next_dirsep(text);
  check(ov::reference::nextSeparator(path) ==
        (next == nullptr ? std::string::npos : static_cast<size_t>(next - text)));
  check(ov::reference::containsDotdot(path) == (ov_path_contains_dotdot(text) == 1));
  check(ov::reference::isRelative(path) == (ov_path_is_relative(text) == 1));
  check(ov::reference::isUri(path) == (ov_uri_valid_uri(text) == 1));
  check(ov_uri_valid_scheme_term(text) == ov_uri_valid_scheme(text, path.size()));
}

void rewrite(const std::string& path) {
  std::vector<char> out(path.c_str(), path.c_str() + path.size() + 1);
  ov_path_remove_redundant_slashes(out.data(), out.size());
  check(ov::reference::withoutRedundantSlashes(path) == out.data());
  out.assign(path.c_str(), path.c_str() + path.size() + 1);
  const int32_t length = ov_path_remove_trailing_slashes(out.data(), out.data(), out.size());
  check(path.substr(0, path.find_last_not_of('/') + 1) == out.data());
  check(length == static_cast<int32_t>(std::strlen(out.data())));
  out.assign(path.c_str(), path.c_str() + path.size() + 1);
  const ov_rc error = ov_path_enforce_rootedness(out.data(), out.size());
  const Result expected = ov::reference::rooted(path);
  if (!expected) return check(error == OV_EINVAL);
  check(expected->size() < out.size() ? error == 0 && *expected == out.data()
                                      : error == OV_EPATHMAX);
}

// What is found is there and lies in one of the directories.
void find(const std::string& name, const std::string& directories, size_t size) {
  const auto out = std::make_unique<char[]>(size);
  if (ov_path_find_file_in_string_of_paths(name.c_str(), directories.c_str(), out.get(), size) !=
      0) {
    return;
  }
  const std::string found = out.get();
  check(found.size() < size && ov_path_exists(out.get()) == 1);
  check(found.ends_with("/" + name));
  const std::string dir = found.substr(0, found.size() - name.size() - 1);
  check((":" + directories + ":").find(":" + dir + ":") != std::string::npos);
}

}  // namespace

// The first byte is the size of a small buffer. The rest is one path, and also two texts with a "|"
// between them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const size_t small = data[0] + size_t{1};
  const std::string whole(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::string path = whole.c_str();
  canonicalise(path, small);
  widen(path);
  split(path);
  climb(path);
  separate(path);
  rewrite(path);
  const size_t bar = std::min(path.find('|'), path.size());
  const std::string first = path.substr(0, bar);
  const std::string second = path.substr(std::min(bar + 1, path.size()));
  append(first, second, small);
  walk(first, second);
  find(first, second, small);
  return 0;
}
