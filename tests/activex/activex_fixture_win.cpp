#include "tests/activex/activex_fixture_win.h"

#include <array>
#include <filesystem>

namespace Vantrel::Web::ActiveX {

namespace {

std::filesystem::path libraryPath() {
  std::array<wchar_t, MAX_PATH> program = {};
  GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
  return std::filesystem::path(program.data()).parent_path() / L"..\\..\\nporvaneweb.dll";
}

template <class Function>
Function entryOf(HMODULE library, const char* name) {
  const auto entry = GetProcAddress(library, name);
  EXPECT_NE(entry, nullptr) << name;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(entry));
}

}  // namespace

void ActiveXTest::SetUp() {
  ASSERT_EQ(OleInitialize(nullptr), S_OK);
  library_ = LoadLibraryW(libraryPath().c_str());
  ASSERT_NE(library_, nullptr);
}

void ActiveXTest::TearDown() {
  if (library_ == nullptr) return;
  EXPECT_EQ(canUnloadNow(), S_OK);
  EXPECT_NE(FreeLibrary(library_), FALSE);
  OleUninitialize();
}

HRESULT ActiveXTest::getClassObject(REFCLSID classId, REFIID id, void** object) const {
  using Entry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  return entryOf<Entry>(library_, "DllGetClassObject")(classId, id, object);
}

HRESULT ActiveXTest::callEntry(const char* name) const {
  return entryOf<HRESULT(STDAPICALLTYPE*)()>(library_, name)();
}

HRESULT ActiveXTest::canUnloadNow() const {
  return callEntry("DllCanUnloadNow");
}

void ActiveXTest::createControl(REFIID id, void** object) const {
  ComPointer<IClassFactory> factory;
  ASSERT_EQ(getClassObject(kControlClassId, IID_IClassFactory, factory.putVoid()), S_OK);
  ASSERT_EQ(factory->CreateInstance(nullptr, id, object), S_OK);
}

size_t ActiveXTest::logCount(std::string_view part) const {
  const std::string log = profile_.log();
  size_t count = 0;
  for (size_t at = log.find(part); at != std::string::npos; at = log.find(part, at + 1)) ++count;
  return count;
}

}  // namespace Vantrel::Web::ActiveX
