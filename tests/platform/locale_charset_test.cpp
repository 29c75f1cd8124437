#include "platform/posix/locale_charset.h"

#include <ostream>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::codePageOfLocale;

TEST(CodePageOfLocale, TakesTheFirstVariableThatIsNotEmpty) {
    EXPECT_EQ(codePageOfLocale("a.CP1250", "b.CP1251", "c.CP1253"), 1250U);
    EXPECT_EQ(codePageOfLocale(nullptr, "b.CP1251", "c.CP1253"), 1251U);
    EXPECT_EQ(codePageOfLocale("", "b.CP1251", "c.CP1253"), 1251U);
    EXPECT_EQ(codePageOfLocale(nullptr, nullptr, "c.CP1253"), 1253U);
    EXPECT_EQ(codePageOfLocale("", "", "c.CP1253"), 1253U);
    EXPECT_EQ(codePageOfLocale("a.CP1250", nullptr, nullptr), 1250U);
}

TEST(CodePageOfLocale, AVariableWithoutAKnownCharsetHidesThoseBehindIt) {
    EXPECT_EQ(codePageOfLocale("C", "b.CP1251", "c.UTF-8"), 1252U);
    EXPECT_EQ(codePageOfLocale("ja_JP", nullptr, "ja_JP.UTF-8"), 1252U);
    EXPECT_EQ(codePageOfLocale(nullptr, "b.unknown", "c.UTF-8"), 1252U);
}

TEST(CodePageOfLocale, IsWesternWhereNothingIsSet) {
    EXPECT_EQ(codePageOfLocale(nullptr, nullptr, nullptr), 1252U);
    EXPECT_EQ(codePageOfLocale("", "", ""), 1252U);
}

struct LocaleCase {
    const char* name;
    const char* locale;
    unsigned page;
};

void PrintTo(const LocaleCase& row, std::ostream* out) {
    *out << row.name << ": " << row.locale;
}

class CodePageOfCharset : public testing::TestWithParam<LocaleCase> {};

TEST_P(CodePageOfCharset, IsTheOneThatFits) {
    EXPECT_EQ(codePageOfLocale(nullptr, nullptr, GetParam().locale), GetParam().page);
}

constexpr LocaleCase kLocaleCases[] = {
    {"C", "C", 1252},
    {"Posix", "POSIX", 1252},
    {"CWithUtf8", "C.UTF-8", 65001},
    {"NoCharset", "ru_RU", 1252},
    {"EmptyCharset", "ru_RU.", 1252},
    {"PunctuationAlone", "ru_RU.-_", 1252},
    {"UnknownCharset", "hy_AM.ARMSCII-8", 1252},
    {"CharsetWithoutADot", "UTF-8", 1252},
    {"EndlessName", "x.utf8utf8utf8utf8utf8utf8utf8utf8utf8", 1252},
    {"NameTooLongToBeKept", "x.CP00000000000000000012519", 1252},
    {"NameThatStartsLikeAKnownOne", "x.utf88", 1252},
    {"NameThatEndsLikeAKnownOne", "x.xutf8", 1252},
    {"ModifierAlone", "de_DE@euro", 1252},
    {"DotInTheModifier", "ru_RU@x.KOI8-R", 1252},
    {"CharsetBeforeAModifier", "sr_RS.UTF-8@latin", 65001},
    {"NumberedCharsetBeforeAModifier", "de_DE.ISO-8859-2@euro", 1250},
    {"Utf8Plain", "de_DE.utf8", 65001},
    {"Utf8InMixedCase", "de_DE.Utf-8", 65001},
    {"Utf8WithAnUnderscore", "de_DE.UTF_8", 65001},
    {"Utf8ByItsNumber", "de_DE.CP65001", 65001},
    {"Iso1", "de_DE.ISO-8859-1", 1252},
    {"Iso2", "pl_PL.ISO-8859-2", 1250},
    {"Iso2Glued", "pl_PL.iso88592", 1250},
    {"Iso2HalfGlued", "pl_PL.ISO8859-2", 1250},
    {"Iso2AsDigits", "pl_PL.8859-2", 1250},
    {"Iso3", "mt_MT.ISO-8859-3", 1254},
    {"Iso4", "et_EE.ISO-8859-4", 1257},
    {"Iso5", "ru_RU.ISO-8859-5", 1251},
    {"Iso6", "ar_EG.ISO-8859-6", 1256},
    {"Iso7", "el_GR.ISO-8859-7", 1253},
    {"Iso8", "he_IL.ISO-8859-8", 1255},
    {"Iso9", "tr_TR.ISO-8859-9", 1254},
    {"Iso10", "iu_CA.ISO-8859-10", 1257},
    {"Iso11", "th_TH.ISO-8859-11", 874},
    {"Iso12NeverCame", "xx.ISO-8859-12", 1252},
    {"Iso13", "lt_LT.ISO-8859-13", 1257},
    {"Iso14", "cy_GB.ISO-8859-14", 1252},
    {"Iso15", "fr_FR.ISO8859-15", 1252},
    {"Iso16", "ro_RO.ISO-8859-16", 1250},
    {"Iso17NeverCame", "xx.ISO-8859-17", 1252},
    {"IsoWithoutAPart", "xx.ISO-8859", 1252},
    {"IsoWithAHugePart", "xx.ISO-8859-99999999999", 1252},
    {"Cp874", "th_TH.CP874", 874},
    {"Cp932", "ja_JP.CP932", 932},
    {"Cp936", "zh_CN.CP936", 936},
    {"Cp949", "ko_KR.CP949", 949},
    {"Cp950", "zh_TW.CP950", 950},
    {"Cp1250", "pl_PL.CP1250", 1250},
    {"Cp1251", "be_BY.CP1251", 1251},
    {"Cp1251LowerCase", "be_BY.cp1251", 1251},
    {"Cp1251WithItsVendor", "be_BY.MICROSOFT-CP1251", 1251},
    {"Cp1251AsDigits", "be_BY.1251", 1251},
    {"Windows1251", "be_BY.windows-1251", 1251},
    {"Cp1252", "de_DE.CP1252", 1252},
    {"Cp1253", "el_GR.CP1253", 1253},
    {"Cp1254", "tr_TR.CP1254", 1254},
    {"Cp1255", "yi_US.CP1255", 1255},
    {"Cp1256", "ar_EG.CP1256", 1256},
    {"Cp1257", "lt_LT.CP1257", 1257},
    {"Cp1258", "vi_VN.CP1258", 1258},
    {"Cp1259IsNone", "xx.CP1259", 1252},
    {"NumberWithATail", "xx.CP1251x", 1252},
    {"ConsoleRussian", "ru_RU.CP866", 1251},
    {"ConsoleCentralEuropean", "pl_PL.IBM852", 1250},
    {"ConsoleWestern", "de_DE.CP850", 1252},
    {"Koi8R", "ru_RU.KOI8-R", 1251},
    {"Koi8U", "uk_UA.KOI8-U", 1251},
    {"Koi8T", "tg_TJ.KOI8-T", 1251},
    {"Pt154", "kk_KZ.PT154", 1251},
    {"Rk1048", "kk_KZ.RK1048", 1251},
    {"Viscii", "vi_VN.VISCII", 1258},
    {"Tcvn", "vi_VN.TCVN5712-1", 1258},
    {"Sjis", "ja_JP.SJIS", 932},
    {"ShiftJis", "ja_JP.Shift_JIS", 932},
    {"EucJp", "ja_JP.eucJP", 932},
    {"EucJpWithAHyphen", "ja_JP.EUC-JP", 932},
    {"Ujis", "ja_JP.ujis", 932},
    {"Ms932", "ja_JP.MS932", 932},
    {"Windows31j", "ja_JP.Windows-31J", 932},
    {"EucKr", "ko_KR.EUC-KR", 949},
    {"EucKrGlued", "ko_KR.euckr", 949},
    {"Uhc", "ko_KR.UHC", 949},
    {"Johab", "ko_KR.JOHAB", 949},
    {"Gbk", "zh_CN.GBK", 936},
    {"Gb2312", "zh_CN.GB2312", 936},
    {"Gb18030", "zh_CN.GB18030", 936},
    {"EucCn", "zh_CN.eucCN", 936},
    {"Big5", "zh_TW.Big5", 950},
    {"Big5Hkscs", "zh_HK.BIG5-HKSCS", 950},
    {"EucTw", "zh_TW.EUC-TW", 950},
    {"Tis620", "th_TH.TIS-620", 874},
};
INSTANTIATE_TEST_SUITE_P(Table, CodePageOfCharset, testing::ValuesIn(kLocaleCases),
                         [](const auto& row) { return row.param.name; });

}  // namespace

}  // namespace vexa::test
