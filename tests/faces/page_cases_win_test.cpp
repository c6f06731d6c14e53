// The table of what a page may do, run against both faces of the shipped library by one driver.
#include <gmock/gmock.h>

#include <set>

#include "tests/faces/faces_fixture.h"
#include "tests/faces/page_cases.h"

namespace Vantrel::Web::Faces {
namespace {

using testing::HasSubstr;

class PageCasesTest : public FacesTest {
 protected:
  void runFamily(Kind kind, const char* name) {
    const PageFamily& family = pageFamily(name);
    open(kind, family.client, {{"drop-mode", "callback"}});
    for (const PageCase& pageCase : family.cases) runCase(kind, pageCase);
  }

 private:
  void runCase(Kind kind, const PageCase& pageCase) {
    SCOPED_TRACE(pageCase.name);
    run("runCase(function () {" + std::string(pageCase.script) + "\n});");
    const auto answered = [this] { return page().evaluate("answer").isText(); };
    EXPECT_TRUE(face().pumpUntil(answered));
    const bool same = kind == Kind::kNetscape || pageCase.activeX == nullptr;
    EXPECT_EQ(page().evaluate("answer").asText(), same ? pageCase.netscape : pageCase.activeX);
    const char* const part = pageCase.log == nullptr ? "" : pageCase.log;
    EXPECT_THAT(log(), HasSubstr(part));
  }
};

// A case in CTest for each family and face.
#define OV_FAMILY(name)                            \
  TEST_F(PageCasesTest, name##OnTheNetscapeFace) { \
    runFamily(Kind::kNetscape, #name);             \
  }                                                \
  TEST_F(PageCasesTest, name##OnTheActiveXFace) {  \
    runFamily(Kind::kActiveX, #name);              \
  }

OV_FAMILY(Queries)
OV_FAMILY(Properties)
OV_FAMILY(Session)
OV_FAMILY(SessionArguments)
OV_FAMILY(SessionFurther)
OV_FAMILY(Requests)
OV_FAMILY(Starts)
OV_FAMILY(NoClient)
OV_FAMILY(Dialogs)
OV_FAMILY(Reading)
OV_FAMILY(Events)
OV_FAMILY(Drops)

TEST(PageCaseTableTest, EachDifferenceIsNamedAndEachNameIsUsed) {
  std::set<Difference> used;
  for (const PageFamily& family : pageFamilies()) {
    for (const PageCase& pageCase : family.cases) {
      const bool differs =
          pageCase.activeX != nullptr && std::string(pageCase.activeX) != pageCase.netscape;
      EXPECT_EQ(differs, pageCase.difference != Difference::kNone)
          << family.name << " " << pageCase.name;
      used.insert(pageCase.difference);
    }
  }
  EXPECT_EQ(used.size(), static_cast<size_t>(Difference::kUnreadablePath) + 1);
}

}  // namespace
}  // namespace Vantrel::Web::Faces
