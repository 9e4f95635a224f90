#include "tools/Languages.h"

#include <algorithm>
#include <array>

namespace tools {

namespace {

struct Row
{
    const char *name;
    const char *code2;
    const char *code3;
};

// clang-format off
/// ISO 639-1 by English name with the terminologic three-letter codes. Names of several words keep
/// their first one only, which is why "Central", "Church" or "Northern" stand here: it is meant.
constexpr Row rows[] = {
    {"undetermined", "un", "und"}, {"Abkhazian", "ab", "abk"}, {"Afar", "aa", "aar"},
    {"Afrikaans", "af", "afr"}, {"Akan", "ak", "aka"}, {"Albanian", "sq", "sqi"}, {"Amharic", "am", "amh"},
    {"Arabic", "ar", "ara"}, {"Aragonese", "an", "arg"}, {"Armenian", "hy", "hye"},
    {"Assamese", "as", "asm"}, {"Avaric", "av", "ava"}, {"Avestan", "ae", "ave"}, {"Aymara", "ay", "aym"},
    {"Azerbaijani", "az", "aze"}, {"Bambara", "bm", "bam"}, {"Bashkir", "ba", "bak"},
    {"Basque", "eu", "eus"}, {"Belarusian", "be", "bel"}, {"Bengali", "bn", "ben"},
    {"Bihari", "bh", "bih"}, {"Bislama", "bi", "bis"}, {"Bokmål", "nb", "nob"}, {"Bosnian", "bs", "bos"},
    {"Breton", "br", "bre"}, {"Bulgarian", "bg", "bul"}, {"Burmese", "my", "mya"},
    {"Catalan", "ca", "cat"}, {"Central", "km", "khm"}, {"Chamorro", "ch", "cha"},
    {"Chechen", "ce", "che"}, {"Chichewa", "ny", "nya"}, {"Chinese", "zh", "zho"}, {"Church", "cu", "chu"},
    {"Chuvash", "cv", "chv"}, {"Cornish", "kw", "cor"}, {"Corsican", "co", "cos"}, {"Cree", "cr", "cre"},
    {"Croatian", "hr", "hrv"}, {"Czech", "cs", "ces"}, {"Danish", "da", "dan"}, {"Divehi", "dv", "div"},
    {"Dutch", "nl", "nld"}, {"Dzongkha", "dz", "dzo"}, {"English", "en", "eng"},
    {"Esperanto", "eo", "epo"}, {"Estonian", "et", "est"}, {"Ewe", "ee", "ewe"}, {"Faroese", "fo", "fao"},
    {"Fijian", "fj", "fij"}, {"Finnish", "fi", "fin"}, {"French", "fr", "fra"}, {"Fulah", "ff", "ful"},
    {"Gaelic", "gd", "gla"}, {"Galician", "gl", "glg"}, {"Ganda", "lg", "lug"}, {"Georgian", "ka", "kat"},
    {"German", "de", "deu"}, {"Greek", "el", "ell"}, {"Guarani", "gn", "grn"}, {"Gujarati", "gu", "guj"},
    {"Haitian", "ht", "hat"}, {"Hausa", "ha", "hau"}, {"Hebrew", "he", "heb"}, {"Herero", "hz", "her"},
    {"Hindi", "hi", "hin"}, {"Hiri", "ho", "hmo"}, {"Hungarian", "hu", "hun"}, {"Icelandic", "is", "isl"},
    {"Ido", "io", "ido"}, {"Igbo", "ig", "ibo"}, {"Indonesian", "id", "ind"}, {"Interlingua", "ia", "ina"},
    {"Interlingue", "ie", "ile"}, {"Inuktitut", "iu", "iku"}, {"Inupiaq", "ik", "ipk"},
    {"Irish", "ga", "gle"}, {"Italian", "it", "ita"}, {"Japanese", "ja", "jpn"}, {"Javanese", "jv", "jav"},
    {"Kalaallisut", "kl", "kal"}, {"Kannada", "kn", "kan"}, {"Kanuri", "kr", "kau"},
    {"Kashmiri", "ks", "kas"}, {"Kazakh", "kk", "kaz"}, {"Kikuyu", "ki", "kik"},
    {"Kinyarwanda", "rw", "kin"}, {"Kirghiz", "ky", "kir"}, {"Komi", "kv", "kom"}, {"Kongo", "kg", "kon"},
    {"Korean", "ko", "kor"}, {"Kuanyama", "kj", "kua"}, {"Kurdish", "ku", "kur"}, {"Lao", "lo", "lao"},
    {"Latin", "la", "lat"}, {"Latvian", "lv", "lav"}, {"Limburgan", "li", "lim"}, {"Lingala", "ln", "lin"},
    {"Lithuanian", "lt", "lit"}, {"Luba", "lu", "lub"}, {"Luxembourgish", "lb", "ltz"},
    {"Macedonian", "mk", "mkd"}, {"Malagasy", "mg", "mlg"}, {"Malay", "ms", "msa"},
    {"Malayalam", "ml", "mal"}, {"Maltese", "mt", "mlt"}, {"Manx", "gv", "glv"}, {"Maori", "mi", "mri"},
    {"Marathi", "mr", "mar"}, {"Marshallese", "mh", "mah"}, {"Mongolian", "mn", "mon"},
    {"Nauru", "na", "nau"}, {"Navajo", "nv", "nav"}, {"Ndebele", "nd", "nde"}, {"Ndebele", "nr", "nbl"},
    {"Ndonga", "ng", "ndo"}, {"Nepali", "ne", "nep"}, {"Northern", "se", "sme"},
    {"Norwegian", "no", "nor"}, {"Norwegian", "nn", "nno"}, {"Occitan", "oc", "oci"},
    {"Ojibwa", "oj", "oji"}, {"Oriya", "or", "ori"}, {"Oromo", "om", "orm"}, {"Ossetian", "os", "oss"},
    {"Pali", "pi", "pli"}, {"Panjabi", "pa", "pan"}, {"Persian", "fa", "fas"}, {"Polish", "pl", "pol"},
    {"Portuguese", "pt", "por"}, {"Pushto", "ps", "pus"}, {"Quechua", "qu", "que"},
    {"Romanian", "ro", "ron"}, {"Romansh", "rm", "roh"}, {"Rundi", "rn", "run"}, {"Russian", "ru", "rus"},
    {"Samoan", "sm", "smo"}, {"Sango", "sg", "sag"}, {"Sanskrit", "sa", "san"}, {"Sardinian", "sc", "srd"},
    {"Serbian", "sr", "srp"}, {"Shona", "sn", "sna"}, {"Sichuan", "ii", "iii"}, {"Sindhi", "sd", "snd"},
    {"Sinhala", "si", "sin"}, {"Slovak", "sk", "slk"}, {"Slovenian", "sl", "slv"}, {"Somali", "so", "som"},
    {"Sotho", "st", "sot"}, {"Spanish", "es", "spa"}, {"Sundanese", "su", "sun"}, {"Swahili", "sw", "swa"},
    {"Swati", "ss", "ssw"}, {"Swedish", "sv", "swe"}, {"Tagalog", "tl", "tgl"}, {"Tahitian", "ty", "tah"},
    {"Tajik", "tg", "tgk"}, {"Tamil", "ta", "tam"}, {"Tatar", "tt", "tat"}, {"Telugu", "te", "tel"},
    {"Thai", "th", "tha"}, {"Tibetan", "bo", "bod"}, {"Tigrinya", "ti", "tir"}, {"Tonga", "to", "ton"},
    {"Tsonga", "ts", "tso"}, {"Tswana", "tn", "tsn"}, {"Turkish", "tr", "tur"}, {"Turkmen", "tk", "tuk"},
    {"Twi", "tw", "twi"}, {"Uighur", "ug", "uig"}, {"Ukrainian", "uk", "ukr"}, {"Urdu", "ur", "urd"},
    {"Uzbek", "uz", "uzb"}, {"Venda", "ve", "ven"}, {"Vietnamese", "vi", "vie"}, {"Volapük", "vo", "vol"},
    {"Walloon", "wa", "wln"}, {"Welsh", "cy", "cym"}, {"Western", "fy", "fry"}, {"Wolof", "wo", "wol"},
    {"Xhosa", "xh", "xho"}, {"Yiddish", "yi", "yid"}, {"Yoruba", "yo", "yor"}, {"Zhuang", "za", "zha"},
    {"Zulu", "zu", "zul"},
};

constexpr const char *commonNames[] = {
    "Arabic", "Bulgarian", "Chinese", "Croatian", "Czech", "Danish", "Dutch", "English", "Estonian",
    "Finnish", "French", "German", "Greek", "Hebrew", "Hindi", "Hungarian", "Icelandic", "Irish",
    "Italian", "Japanese", "Korean", "Latvian", "Lithuanian", "Norwegian", "Persian", "Polish",
    "Portuguese", "Romanian", "Russian", "Serbian", "Slovak", "Slovenian", "Swedish", "Spanish", "Thai",
    "Turkish", "Urdu",
};

/// Exactly these fifteen; the other bibliographic codes are left unmapped on purpose.
constexpr std::array<const char *, 2> bibliographic[] = {
    {"alb", "sqi"}, {"arm", "hye"}, {"baq", "eus"}, {"tib", "bod"}, {"bur", "mya"}, {"cze", "ces"},
    {"chi", "zho"}, {"ger", "deu"}, {"dut", "nld"}, {"gre", "ell"}, {"fre", "fra"}, {"per", "fas"},
    {"ice", "isl"}, {"rum", "ron"}, {"slo", "slk"},
};
// clang-format on

QStringList makeMenu()
{
    QStringList menu{QStringLiteral("undetermined")};
    for (const char *name : commonNames)
        menu.append(QString::fromUtf8(name));
    for (const QStringList &row : languageTable()) {
        if (!menu.contains(row.front()))
            menu.append(row.front());
    }
    return menu;
}

QList<QStringList> makeTable()
{
    QList<QStringList> table;
    for (const Row &row : rows)
        table.append(
            {QString::fromUtf8(row.name), QString::fromUtf8(row.code2), QString::fromUtf8(row.code3)});
    return table;
}

} // namespace

const QList<QStringList> &languageTable()
{
    static const QList<QStringList> table = makeTable();
    return table;
}

const QStringList &languageMenu()
{
    static const QStringList menu = makeMenu();
    return menu;
}

const QStringList *languageRow(const QString &nameOrCode)
{
    const auto &table = languageTable();
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const QStringList &row) { return row.contains(nameOrCode); });
    return found == table.end() ? nullptr : &*found;
}

QString terminologicCodeFor(const QString &bibliographicCode)
{
    for (const auto &[code, terminologic] : bibliographic) {
        if (bibliographicCode == QLatin1String(code))
            return QString::fromLatin1(terminologic);
    }
    return {};
}

QString twoLetterCodeOf(const QString &nameOrCode)
{
    const QStringList *row = languageRow(nameOrCode);
    return row != nullptr ? row->at(1) : QStringLiteral("un");
}

QString threeLetterCodeOf(const QString &nameOrCode)
{
    const QStringList *row = languageRow(nameOrCode);
    return row != nullptr ? row->at(2) : QStringLiteral("und");
}

QString languageNameOf(const QString &nameOrCode)
{
    const QStringList *row = languageRow(nameOrCode);
    return row != nullptr ? row->at(0) : QStringLiteral("undetermined");
}

QString standardizedCodeOf(const QString &code)
{
    if (languageRow(code) != nullptr)
        return code;
    const QString terminologic = terminologicCodeFor(code);
    return terminologic.isNull() ? QStringLiteral("und") : terminologic;
}

} // namespace tools
