#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

std::string TextOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// What stands between each `before` and the next `after`.
std::vector<std::string> Between(const std::string& text, const std::string& before, const std::string& after) {
  std::vector<std::string> found;
  for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at)) {
    at += before.size();
    found.push_back(text.substr(at, text.find(after, at) - at));
  }
  return found;
}

std::vector<std::string> Chapters() {
  std::vector<std::string> chapters;
  for (const auto& entry : fs::directory_iterator(fs::path(TARVO_SOURCE_DIR) / "docs" / "manual")) {
    if (entry.path().extension() == ".md") chapters.push_back(TextOf(entry.path()));
  }
  return chapters;
}

void AddLiterals(const std::string& line, std::set<std::string>& texts) {
  static const std::regex literal(R"re("((?:[^"\\]|\\.)*)")re");
  for (std::sregex_iterator match(line.begin(), line.end(), literal), end; match != end; ++match) {
    std::string text = (*match)[1];
    std::erase(text, '&');
    texts.insert(text.substr(0, text.find_last_not_of(' ') + 1));
  }
}

/// The text literals of the program's sources as the user reads them: without the marks of underlined letters.
std::set<std::string> TextsOfTheProgram() {
  std::set<std::string> texts;
  for (const char* room : {"src", "desktop", "console"}) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(TARVO_SOURCE_DIR) / room)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".cpp" && extension != ".h") continue;
      std::ifstream file(entry.path());
      for (std::string line; std::getline(file, line);) AddLiterals(line, texts);
    }
  }
  return texts;
}

/// The chapter as one line, without what stands in a type of its own.
std::string Prose(const std::string& chapter) {
  std::istringstream lines(chapter);
  std::string prose;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("    ")) prose += line + " ";
  }
  return std::regex_replace(prose, std::regex("`[^`]*`"), "");
}

class Manual : public testing::Test {
 protected:
  std::string html = TextOf(TARVO_MANUAL);
};

TEST_F(Manual, HasEveryChapter) {
  std::size_t checked = 0;
  for (const std::string& chapter : Chapters()) {
    ASSERT_THAT(chapter, StartsWith("# "));
    EXPECT_THAT(html, HasSubstr(">" + chapter.substr(2, chapter.find('\n') - 2) + "</h1>"));
    ++checked;
  }
  EXPECT_GE(checked, 10U);
  EXPECT_THAT(Between(html, "<h1 ", ">"), SizeIs(checked));
}

TEST_F(Manual, ListsEveryChapterInItsContents) {
  const std::string contents = html.substr(html.find("<nav"), html.find("</nav>") - html.find("<nav"));
  for (const std::string& heading : Between(html, "<h1 id=\"", "\"")) {
    EXPECT_THAT(contents, HasSubstr("href=\"#" + heading + "\""));
  }
}

TEST_F(Manual, LeadsNowhereThatIsNot) {
  const std::vector<std::string> ids = Between(html, "id=\"", "\"");
  EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size());
  const std::vector<std::string> links = Between(html, "href=\"", "\"");
  EXPECT_THAT(links, Not(IsEmpty()));
  for (const std::string& link : links) {
    ASSERT_THAT(link, StartsWith("#"));
    EXPECT_THAT(ids, Contains(link.substr(1)));
  }
}

TEST_F(Manual, HoldsItsPictures) {
  std::size_t shown = 0;
  for (const std::string& chapter : Chapters()) shown += Between(chapter, "![", "]").size();
  const std::vector<std::string> pictures = Between(html, "<img src=\"", "\"");
  EXPECT_GE(shown, 1U);
  EXPECT_THAT(pictures, SizeIs(shown));
  EXPECT_THAT(pictures, Each(StartsWith("data:image/png;base64,iVBOR")));
}

TEST_F(Manual, QuotesTheProgramToTheLetter) {
  const std::set<std::string> texts = TextsOfTheProgram();
  const std::regex quoted(R"re("([^"]+)"|\*\*([^*]+)\*\*)re");
  std::size_t checked = 0;
  for (const std::string& chapter : Chapters()) {
    const std::string prose = Prose(chapter);
    for (std::sregex_iterator match(prose.begin(), prose.end(), quoted), end; match != end; ++match) {
      std::string text = (*match)[1].matched ? (*match)[1] : (*match)[2];
      text.erase(text.find_last_not_of(' ') + 1);
      EXPECT_TRUE(texts.contains(text)) << "the manual says \"" << text << "\", the program does not";
      ++checked;
    }
  }
  EXPECT_GE(checked, 50U);
}

TEST_F(Manual, NeedsNoOtherFile) {
  for (const char* other : {"<link", "<script", "<iframe", "url(", "@import", "://"}) {
    EXPECT_THAT(html, Not(HasSubstr(other))) << other;
  }
}

}  // namespace
