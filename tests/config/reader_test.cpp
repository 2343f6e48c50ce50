// How the text of a file is cut into fields and numbers, and what a damaged file does.

#include <ostream>

#include "config/field_text.h"
#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::IsBox;
using test::Loaded;
using view::Icon;

constexpr char kHeader[] = "\"DATAFORMAT 1.0 Belk\"";

// Files that can be read.

struct Readable {
  std::string name;
  std::string content;
  Fields fields;  ///< as they are staged
  Fields shown;   ///< filter, address and speed on the page
};
void PrintTo(const Readable& row, std::ostream* out) {
  *out << row.name;
}

class ReadableFile : public test::PageFileFixture, public testing::WithParamInterface<Readable> {};

TEST_P(ReadableFile, IsCutIntoItsFields) {
  OpenPage("Belk");
  Load(GetParam().content);
  EXPECT_THAT(BoxInFront(), IsBox(Loaded("Belk"), Icon::kInformation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ((Fields{FileField(1), FileField(2), FileField(3)}), GetParam().fields);
  EXPECT_EQ((Fields{Text("FilterBelk"), Text("AddressBelk"), Text("BaudBelk")}), GetParam().shown);
}

const std::string kFirst = std::string(kHeader) + "\r\n";
const Fields kShown = {"16", "17", "38400"};

INSTANTIATE_TEST_SUITE_P(
    Files, ReadableFile,
    testing::Values(
        Readable{"QuotedCrLf", kFirst + "\"16\"\r\n\"0\"\r\n\"785\"\r\n", {"16", "0", "785"}, kShown},
        Readable{"QuotedLf", "\"DATAFORMAT 1.0 Belk\"\n\"16\"\n\"0\"\n\"785\"\n", {"16", "0", "785"}, kShown},
        Readable{"MixedEnds", kFirst + "\"16\"\n\"0\"\r\n\"785\"\n", {"16", "0", "785"}, kShown},
        Readable{"NoLastEnd", kFirst + "\"16\"\r\n\"0\"\r\n\"785\"", {"16", "0", "785"}, kShown},
        Readable{"Unquoted", "DATAFORMAT 1.0 Belk\r\n16\r\n0\r\n785\r\n", {"16", "0", "785"}, kShown},
        Readable{"UnquotedLfNoLastEnd", "DATAFORMAT 1.0 Belk\n16\n0\n785", {"16", "0", "785"}, kShown},
        Readable{"AllOnOneLine", std::string(kHeader) + ",\"16\",\"0\",\"785\"\r\n", {"16", "0", "785"}, kShown},
        Readable{"SomeOnOneLine", kFirst + "16,0\r\n785", {"16", "0", "785"}, kShown},
        Readable{"QuotedAndNot", kFirst + "16,\"0\",785", {"16", "0", "785"}, kShown},
        Readable{"LeadingBlanks", "  " + kFirst + "   \"16\"\r\n  0,   785\r\n", {"16", "0", "785"}, kShown},
        Readable{"TextBehindAQuote",
                 "\"DATAFORMAT 1.0 Belk\" of Monday\r\n\"16\"ms\r\n\"0\" \"9\", \"785\"  x,7",
                 {"16", "0", "785"},
                 kShown},
        Readable{"BlanksInQuotes", kFirst + "\" 16 \"\r\n\"0 \"\r\n\"  785\"\r\n", {" 16 ", "0 ", "  785"}, kShown},
        Readable{"CommaInQuotes", kFirst + "\"15,6\"\r\n\"0,4\"\r\n\"784,9\"\r\n", {"15,6", "0,4", "784,9"}, kShown},
        Readable{"TiesToEven",
                 kFirst + "\"16.5\"\r\n\"0,5\"\r\n\"784.5\"\r\n",
                 {"16.5", "0,5", "784.5"},
                 {"16", "16", "38400"}},
        Readable{"PlusAndZeros", kFirst + "+16\r\n000\r\n+00785\r\n", {"+16", "000", "+00785"}, kShown},
        Readable{"QuoteWithoutItsEnd", kFirst + "16\r\n0\r\n\"785", {"16", "0", "785"}, kShown},
        Readable{"QuoteInsideAPlainField", "DATAFORMAT 1.0 Belk\r\n16\r\n0\r\n785\r\nx\"", {"16", "0", "785"}, kShown}),
    [](const auto& given) { return given.param.name; });

TEST(FieldReader, TakesAReturnForTheLinesEndOnlyOutsideOfQuotes) {
  config::FieldReader reader("\"12\r\"\r\n12\r\n");
  EXPECT_EQ(reader.Next(), "12\r");
  EXPECT_EQ(reader.Next(), "12");
}

// The header.

class BelkHeader : public test::PageFileFixture, public testing::WithParamInterface<std::string> {};

TEST_P(BelkHeader, ThatIsAnotherTextIsRefused) {
  OpenPage("Belk");
  const View before = ViewOf("Belk");
  Load(GetParam() + "\r\n\"16\"\r\n\"0\"\r\n\"785\"\r\n");
  EXPECT_THAT(BoxInFront(), IsBox(test::kWrongFormat, Icon::kCritical));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(ViewOf("Belk"), before);
  EXPECT_EQ(FileField(1), "");
  LoadFields("Belk", {"16", "0", "785"});
}

INSTANTIATE_TEST_SUITE_P(Texts, BelkHeader,
                         testing::Values("\"dataformat 1.0 belk\"", "\"DATAFORMAT 1.0 BELK\"",
                                         "\"DATAFORMAT 1.0 belk\"", "\"DATAFORMAT 1.0 Bel\"",
                                         "\"DATAFORMAT 1.0 Belk2\"", "\"DATAFORMAT 1.0 Belk \"",
                                         "\" DATAFORMAT 1.0 Belk\"", "\"DATAFORMAT 1.0  Belk\"",
                                         "\"DATAFORMAT 1.1 Belk\"", "\"DATAFORMAT 1.0 \"", "\"DATAFORMAT 1.0 Lumet\"",
                                         "\"DATAFORMAT 1.0 Oswin\"", "\"\"", "", "\"DATAFORMAT 1.0 Belk",
                                         "x\"DATAFORMAT 1.0 Belk\"", "DATAFORMAT,1.0 Belk",
                                         "\xEF\xBB\xBF\"DATAFORMAT 1.0 Belk\"", "'DATAFORMAT 1.0 Belk'", "garbage"));

// Damaged files.

struct Damaged {
  std::string name;
  std::string model;
  std::string content;
  std::string fault;  ///< what the box says
  Fields staged;      ///< the first staging fields after it
};
void PrintTo(const Damaged& row, std::ostream* out) {
  *out << row.name;
}

/// A good file of that page but for one field, counted from 1.
Damaged DamagedField(std::string name, const std::string& model, std::size_t number, const std::string& text,
                     std::string fault) {
  Fields fields = test::FilePageOf(model).fields;
  fields.at(number - 1) = text;
  return {std::move(name), model, test::FileOf(model, fields), std::move(fault), fields};
}

class DamagedFile : public test::PageFileFixture, public testing::WithParamInterface<Damaged> {};

TEST_P(DamagedFile, SaysWhyAndLeavesTheChannelOpen) {
  const Damaged& row = GetParam();
  OpenPage(row.model);
  Load(row.content);
  EXPECT_THAT(BoxInFront(), IsBox(row.fault, Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  for (std::size_t i = 0; i < row.staged.size(); ++i) EXPECT_EQ(FileField(i + 1), row.staged[i]) << i + 1;

  Click("MDIForm1.OpenMNU");
  Answer(kPath);
  EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kExclamation));
  AnswerOk();
  Click("MDIForm1.SaveMNU");
  Answer("/bench/saved.txt");
  EXPECT_THAT(BoxInFront(), IsBox(core::kFileAlreadyOpen, Icon::kNone));
  AnswerOk();
  EXPECT_EQ(files.Content("/bench/saved.txt"), std::nullopt);
  // The program works on.
  const test::FilePage& page = test::FilePageOf(row.model);
  module[40001] = static_cast<std::uint16_t>(page.code << 8 | 3);
  Click(page.start);
  EXPECT_EQ(State().StartComm, state::kTrue);
}

INSTANTIATE_TEST_SUITE_P(
    Files, DamagedFile,
    testing::Values(
        Damaged{"Empty", "Belk", "", core::kInputPastEndOfFile, {""}},
        Damaged{"HeaderOnly", "Belk", kFirst, core::kInputPastEndOfFile, {""}},
        Damaged{"HeaderWithoutEnd", "Belk", kHeader, core::kInputPastEndOfFile, {""}},
        Damaged{"OneFieldMissing", "Belk", kFirst + "\"16\"\r\n\"0\"\r\n", core::kInputPastEndOfFile, {"16", "0", ""}},
        Damaged{"OneFieldMissingNoEnd", "Belk", kFirst + "\"16\"\r\n\"0\"", core::kInputPastEndOfFile, {"16", "0", ""}},
        Damaged{"QuoteThatTakesTheNextLine",
                "Belk",
                kFirst + "\"16\"\r\n\"0\r\n\"785\"\r\n",
                core::kInputPastEndOfFile,
                {"16", "0\r\n", ""}},
        Damaged{"EmptyLine", "Belk", kFirst + "\"16\"\r\n\"0\"\r\n\r\n", core::kTypeMismatch, {"16", "0", ""}},
        Damaged{"EmptyLineBetween",
                "Belk",
                kFirst + "\"16\"\r\n\r\n\"0\"\r\n\"785\"\r\n",
                core::kTypeMismatch,
                {"16", "", "0"}},
        Damaged{"EmptyQuotes", "Belk", kFirst + "16\r\n0\r\n\"\"\r\n", core::kTypeMismatch, {"16", "0", ""}},
        Damaged{"EmptyBetweenCommas", "Belk", kFirst + "16,,785\r\n", core::kTypeMismatch, {"16", "", "785"}},
        Damaged{"Word", "Belk", kFirst + "16\r\n0\r\nmany\r\n", core::kTypeMismatch, {"16", "0", "many"}},
        Damaged{"Hexadecimal", "Belk", kFirst + "16\r\n0\r\n0x311\r\n", core::kTypeMismatch, {"16", "0", "0x311"}},
        Damaged{"TwoPoints", "Belk", kFirst + "16\r\n0\r\n7.8.5\r\n", core::kTypeMismatch, {"16", "0", "7.8.5"}},
        Damaged{"TwoNumbers", "Belk", kFirst + "16\r\n0\r\n\"7 85\"\r\n", core::kTypeMismatch, {"16", "0", "7 85"}},
        Damaged{"SignOnly", "Belk", kFirst + "16\r\n0\r\n-\r\n", core::kTypeMismatch, {"16", "0", "-"}},
        Damaged{"Exponent", "Belk", kFirst + "16\r\n0\r\n7e2\r\n", core::kTypeMismatch, {"16", "0", "7e2"}},
        Damaged{"TooLarge", "Belk", kFirst + "16\r\n0\r\n4294967296\r\n", core::kOverflow, {"16", "0", "4294967296"}},
        Damaged{"FarTooLarge",
                "Belk",
                kFirst + "16\r\n0\r\n" + std::string(400, '9') + "\r\n",
                core::kOverflow,
                {"16", "0", std::string(400, '9')}},
        Damaged{"FarTooSmall", "Belk", kFirst + "16\r\n-99999999999\r\n785\r\n", core::kOverflow, {"16"}},
        Damaged{"CobinFlags", "Cobin", test::FileOf("Cobin", {"1", "5", "x", "257"}), core::kTypeMismatch, {"1", "5"}},
        Damaged{"DravoType",
                "Dravo",
                test::FileOf("Dravo", {"mV", "1", "2", "3", "4", "5", "6", "0", "257"}),
                core::kTypeMismatch,
                {"mV", "1"}},
        Damaged{"GavenFilter",
                "Gaven",
                test::FileOf("Gaven", {"257", "0", "0", "slow", "0", "0", "1", "2", "3", "4", "5", "6", "7", "8"}),
                core::kTypeMismatch,
                {"257", "0", "0", "slow"}},
        Damaged{"GavenAddress",
                "Gaven",
                test::FileOf("Gaven", {"2147483648", "0", "0", "0", "0", "0", "1", "2", "3", "4", "5", "6", "7", "8"}),
                core::kOverflow,
                {"2147483648", "0"}},
        Damaged{"JorunType",
                "Jorun",
                test::FileOf("Jorun", {"257", "0", "TC-K", "0", "0", "0", "0", "0", "0", "0"}),
                core::kTypeMismatch,
                {"257", "0", "TC-K"}},
        DamagedField("GavenFilterBelowTheList", "Gaven", 3, "-1", core::kOverflow),
        DamagedField("GavenFilterInNoRegister", "Gaven", 4, "65536", core::kOverflow),
        DamagedField("LumetFlagsTooLarge", "Lumet", 10, "99999999999", core::kOverflow),
        DamagedField("LumetAddressTooLarge", "Lumet", 11, "2147483648", core::kOverflow),
        DamagedField("LumetMeasuresTooLarge", "Lumet", 12, "-2147483649", core::kOverflow),
        DamagedField("KelmarFlags", "Kelmar", 1, "all", core::kTypeMismatch),
        DamagedField("KelmarFlagsTooLarge", "Kelmar", 1, "4294967296", core::kOverflow),
        DamagedField("KelmarType", "Kelmar", 4, "TC-K", core::kTypeMismatch),
        DamagedField("KelmarFilter", "Kelmar", 9, "", core::kTypeMismatch),
        DamagedField("HollinFlags", "Hollin", 2, "0x6402", core::kTypeMismatch),
        DamagedField("HollinFilter", "Hollin", 3, "slow", core::kTypeMismatch),
        DamagedField("HollinFullScale", "Hollin", 7, "", core::kTypeMismatch),
        DamagedField("HollinFullScaleTooLarge", "Hollin", 7, "10000000000", core::kOverflow),
        DamagedField("HollinStartScale", "Hollin", 14, "low", core::kTypeMismatch),
        DamagedField("NerithSerial", "Nerith", 1, "COM1", core::kTypeMismatch),
        DamagedField("NerithSerialTooLarge", "Nerith", 1, "4294967296", core::kOverflow),
        DamagedField("NerithSystem", "Nerith", 2, "Celsius", core::kTypeMismatch),
        DamagedField("NerithSensor", "Nerith", 5, "PT100", core::kTypeMismatch),
        DamagedField("NerithLastSensor", "Nerith", 6, "", core::kTypeMismatch),
        DamagedField("MarloSpeed", "Marlo", 1, "fast", core::kTypeMismatch),
        DamagedField("MarloAddress", "Marlo", 2, "", core::kTypeMismatch),
        DamagedField("MarloAddressTooLarge", "Marlo", 2, "9999999999", core::kOverflow),
        DamagedField("MarloOptions", "Marlo", 4, "blink", core::kTypeMismatch),
        DamagedField("MarloLimits", "Marlo", 5, "18 V", core::kTypeMismatch),
        DamagedField("MarloLimitsTooLarge", "Marlo", 5, "4294967296", core::kOverflow),
        DamagedField("QuenbyFlags", "Quenby", 1, "", core::kTypeMismatch),
        DamagedField("QuenbyFlagsTooLarge", "Quenby", 1, "-2147483649", core::kOverflow),
        DamagedField("QuenbyAddress", "Quenby", 5, "COM1", core::kTypeMismatch),
        DamagedField("QuenbyAddressTooLarge", "Quenby", 5, "4294967296", core::kOverflow)),
    [](const auto& given) { return given.param.name; });

TEST_F(DamagedFile, OfGavenKeepsTheControlsThatWereSetBeforeTheFault) {
  OpenPage("Gaven");
  Load(test::FileOf("Gaven", {"785", "10", "3", "slow", "5", "6", "1", "2", "3", "4", "5", "6", "7", "8"}));
  EXPECT_THAT(BoxInFront(), IsBox(core::kTypeMismatch, Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(Text("AddressGaven"), "17");
  EXPECT_EQ(Text("BaudGaven"), "38400");
  EXPECT_TRUE(Checked("CheckGaven(0)"));
  EXPECT_EQ(ListIndex("FilterGaven(0)"), 3);
  EXPECT_EQ(ListIndex("FilterGaven(1)"), 0);
  EXPECT_EQ(ListIndex("FilterGaven(3)"), 0);
  EXPECT_EQ(Text("ValueGaven(1)"), "0");
}

// Eight bits.

class FileBytes : public test::PageFileFixture {};

TEST_F(FileBytes, AreShownAsTheLettersThatTheyAre) {
  OpenPage("Ferrun");
  Fields fields = test::FilePageOf("Ferrun").fields;
  fields[1] =
      "600 \xB0"
      "C";
  LoadFields("Ferrun", fields);
  EXPECT_EQ(Text("ValueFerrun(0)"), "600 °C");
  EXPECT_EQ(Save(), test::FileOf("Ferrun", fields));
}

TEST_F(FileBytes, OfAnyKindAreSavedAsTheyWereLoaded) {
  OpenPage("Ferrun");
  Fields fields = test::FilePageOf("Ferrun").fields;
  fields[1].clear();
  for (int byte = 0x80; byte <= 0xFF; ++byte) fields[1] += static_cast<char>(byte);
  LoadFields("Ferrun", fields);
  EXPECT_EQ(Save(), test::FileOf("Ferrun", fields));
}

TEST_F(FileBytes, OfANumberWiderThanARegisterCountByTheirMasks) {
  OpenPage("Gaven");
  Fields fields = test::FilePageOf("Gaven").fields;
  fields[0] = "66066";  // 0x10212
  LoadFields("Gaven", fields);
  EXPECT_EQ(Text("AddressGaven"), "18");
  EXPECT_EQ(Text("BaudGaven"), "19200");
}

}  // namespace
}  // namespace tarvo
