// A user profile of its own for one test process: the local and the roaming application data, and
// the current user's part of the registry. The plug-in and the desktop clients that this process
// starts look there, so such tests may run beside each other. One at a time in a process, made
// before the plug-in is loaded.
#pragma once

#include <filesystem>
#include <string>

namespace Vantrel::Web::Host {

class ScratchProfile {
 public:
  // Throws std::runtime_error when the platform does not follow.
  ScratchProfile();
  ScratchProfile(const ScratchProfile&) = delete;
  ScratchProfile& operator=(const ScratchProfile&) = delete;
  ~ScratchProfile();

  std::filesystem::path localAppData() const { return root_ / "Local"; }
  std::filesystem::path roamingAppData() const { return root_ / "Roaming"; }

  // The desktop client's files, as bytes.
  void writeServiceUrl(const std::string& text) const;
  void removeServiceUrl() const;
  void writeProcessId(const std::string& text) const;

  // "InstallDir" of this user, or for all users. The latter needs systemRegistry() first.
  void setUserInstallDir(const std::wstring& directory) const;
  void setSystemInstallDir(const std::wstring& directory) const;
  // Gives this process a registry part for all users of its own, which is empty: little that asks
  // the registry works from then on.
  void emptySystemRegistry();

  // The plug-in's log so far, whole.
  std::string log() const;

 private:
  std::filesystem::path runFile(const char* name) const;

  const std::filesystem::path root_;
  const std::wstring key_;
};

}  // namespace Vantrel::Web::Host
