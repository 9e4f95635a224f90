#include "support/TestMain.h"
#include "tools/KXHelpers.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Every row in order: name, two-letter code, three-letter code.
constexpr const char *tableText =
    "undetermined un und; Abkhazian ab abk; Afar aa aar; Afrikaans af afr; Akan ak aka; Albanian sq sqi; "
    "Amharic am amh; Arabic ar ara; Aragonese an arg; Armenian hy hye; Assamese as asm; Avaric av ava; "
    "Avestan ae ave; Aymara ay aym; Azerbaijani az aze; Bambara bm bam; Bashkir ba bak; Basque eu eus; "
    "Belarusian be bel; Bengali bn ben; Bihari bh bih; Bislama bi bis; Bokmål nb nob; Bosnian bs bos; "
    "Breton br bre; Bulgarian bg bul; Burmese my mya; Catalan ca cat; Central km khm; Chamorro ch cha; "
    "Chechen ce che; Chichewa ny nya; Chinese zh zho; Church cu chu; Chuvash cv chv; Cornish kw cor; "
    "Corsican co cos; Cree cr cre; Croatian hr hrv; Czech cs ces; Danish da dan; Divehi dv div; Dutch nl "
    "nld; Dzongkha dz dzo; English en eng; Esperanto eo epo; Estonian et est; Ewe ee ewe; Faroese fo fao; "
    "Fijian fj fij; Finnish fi fin; French fr fra; Fulah ff ful; Gaelic gd gla; Galician gl glg; Ganda lg "
    "lug; Georgian ka kat; German de deu; Greek el ell; Guarani gn grn; Gujarati gu guj; Haitian ht hat; "
    "Hausa ha hau; Hebrew he heb; Herero hz her; Hindi hi hin; Hiri ho hmo; Hungarian hu hun; Icelandic "
    "is isl; Ido io ido; Igbo ig ibo; Indonesian id ind; Interlingua ia ina; Interlingue ie ile; "
    "Inuktitut iu iku; Inupiaq ik ipk; Irish ga gle; Italian it ita; Japanese ja jpn; Javanese jv jav; "
    "Kalaallisut kl kal; Kannada kn kan; Kanuri kr kau; Kashmiri ks kas; Kazakh kk kaz; Kikuyu ki kik; "
    "Kinyarwanda rw kin; Kirghiz ky kir; Komi kv kom; Kongo kg kon; Korean ko kor; Kuanyama kj kua; "
    "Kurdish ku kur; Lao lo lao; Latin la lat; Latvian lv lav; Limburgan li lim; Lingala ln lin; "
    "Lithuanian lt lit; Luba lu lub; Luxembourgish lb ltz; Macedonian mk mkd; Malagasy mg mlg; Malay ms "
    "msa; Malayalam ml mal; Maltese mt mlt; Manx gv glv; Maori mi mri; Marathi mr mar; Marshallese mh "
    "mah; Mongolian mn mon; Nauru na nau; Navajo nv nav; Ndebele nd nde; Ndebele nr nbl; Ndonga ng ndo; "
    "Nepali ne nep; Northern se sme; Norwegian no nor; Norwegian nn nno; Occitan oc oci; Ojibwa oj oji; "
    "Oriya or ori; Oromo om orm; Ossetian os oss; Pali pi pli; Panjabi pa pan; Persian fa fas; Polish pl "
    "pol; Portuguese pt por; Pushto ps pus; Quechua qu que; Romanian ro ron; Romansh rm roh; Rundi rn "
    "run; Russian ru rus; Samoan sm smo; Sango sg sag; Sanskrit sa san; Sardinian sc srd; Serbian sr srp; "
    "Shona sn sna; Sichuan ii iii; Sindhi sd snd; Sinhala si sin; Slovak sk slk; Slovenian sl slv; Somali "
    "so som; Sotho st sot; Spanish es spa; Sundanese su sun; Swahili sw swa; Swati ss ssw; Swedish sv "
    "swe; Tagalog tl tgl; Tahitian ty tah; Tajik tg tgk; Tamil ta tam; Tatar tt tat; Telugu te tel; Thai "
    "th tha; Tibetan bo bod; Tigrinya ti tir; Tonga to ton; Tsonga ts tso; Tswana tn tsn; Turkish tr tur; "
    "Turkmen tk tuk; Twi tw twi; Uighur ug uig; Ukrainian uk ukr; Urdu ur urd; Uzbek uz uzb; Venda ve "
    "ven; Vietnamese vi vie; Volapük vo vol; Walloon wa wln; Welsh cy cym; Western fy fry; Wolof wo wol; "
    "Xhosa xh xho; Yiddish yi yid; Yoruba yo yor; Zhuang za zha; Zulu zu zul";

constexpr const char *commonText =
    "Arabic, Bulgarian, Chinese, Croatian, Czech, Danish, Dutch, English, Estonian, Finnish, French, German, "
    "Greek, Hebrew, Hindi, Hungarian, Icelandic, Irish, Italian, Japanese, Korean, Latvian, Lithuanian, "
    "Norwegian, Persian, Polish, Portuguese, Romanian, Russian, Serbian, Slovak, Slovenian, Swedish, "
    "Spanish, "
    "Thai, Turkish, Urdu";

QList<QStringList> expectedTable()
{
    QList<QStringList> table;
    for (const QString &row : QString::fromUtf8(tableText).split(u"; "_s))
        table.append(row.split(u' '));
    return table;
}

} // namespace

class LanguagesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableHasEveryRowInOrder()
    {
        const auto expected = expectedTable();
        const auto &table = m_helpers.languageArrayMatrix();
        QCOMPARE(table.size(), 185);
        for (qsizetype i = 0; i < expected.size(); ++i)
            QCOMPARE(table.at(i), expected.at(i));
    }

    void menuOpensWithTheCommonLanguages()
    {
        const QStringList common = QString::fromUtf8(commonText).split(u", "_s);
        QCOMPARE(common.size(), 37);
        QCOMPARE(m_helpers.languageList().size(), 183);
        QCOMPARE(m_helpers.languageList().first(), u"undetermined"_s);
        QCOMPARE(m_helpers.languageList().mid(1, 37), common);
    }

    void menuGoesOnInTableOrderWithEachNameOnce()
    {
        const QStringList menu = m_helpers.languageList();
        QCOMPARE(QSet<QString>(menu.begin(), menu.end()).size(), menu.size());
        QStringList rest;
        for (const QStringList &row : expectedTable()) {
            if (!menu.first(38).contains(row.first()) && !rest.contains(row.first()))
                rest.append(row.first());
        }
        QCOMPARE(menu.mid(38), rest);
        QCOMPARE(menu.count(u"Norwegian"_s), 1);
        QCOMPARE(menu.count(u"Ndebele"_s), 1);
        QCOMPARE(menu.last(), u"Zulu"_s);
        QCOMPARE(menu.at(38), u"Abkhazian"_s);
    }

    void tablesAreBuiltOncePerProgram()
    {
        const KXHelpers other;
        QCOMPARE(&other.languageArrayMatrix(), &m_helpers.languageArrayMatrix());
        QCOMPARE(&other.languageList(), &m_helpers.languageList());
    }

    void shortListIsEmptyUntilItIsFilled()
    {
        KXHelpers helpers;
        QVERIFY(helpers.languageShortList().isEmpty());
        helpers.setLanguageShortList({u"English"_s});
        QCOMPARE(helpers.languageShortList(), QStringList({u"English"_s}));
    }

    void language2CodeForEnglishByNameAndCodes()
    {
        for (const QString &text : {u"English"_s, u"en"_s, u"eng"_s})
            QCOMPARE(KXHelpers::language2CodeFor(text), u"en"_s);
        QCOMPARE(KXHelpers::language2CodeFor(u"xx"_s), u"un"_s);
    }

    void language3CodeForNorwegianTakesTheFirstRow()
    {
        QCOMPARE(KXHelpers::language3CodeFor(u"Norwegian"_s), u"nor"_s);
        QCOMPARE(KXHelpers::language2CodeFor(u"Norwegian"_s), u"no"_s);
        QCOMPARE(KXHelpers::language3CodeFor(u"Ndebele"_s), u"nde"_s);
        QCOMPARE(KXHelpers::language3CodeFor(u"nn"_s), u"nno"_s);
        QCOMPARE(KXHelpers::language3CodeFor(u"nr"_s), u"nbl"_s);
        QCOMPARE(KXHelpers::language3CodeFor(u"xx"_s), u"und"_s);
    }

    void languageForCode3()
    {
        QCOMPARE(KXHelpers::languageForCode3(u"und"_s), u"undetermined"_s);
        QCOMPARE(KXHelpers::languageForCode3(u"nbl"_s), u"Ndebele"_s);
        QCOMPARE(KXHelpers::languageForCode3(u"nno"_s), u"Norwegian"_s);
        QCOMPARE(KXHelpers::languageForCode3(u"nob"_s), u"Bokmål"_s);
        QCOMPARE(KXHelpers::languageForCode3(u"ger"_s), u"undetermined"_s);
    }

    void lookUpsTakeWholeTextsInTheirCase()
    {
        for (const QString &text : {u"english"_s, u"EN"_s, u"Engl"_s, u" en"_s, u""_s, QString()}) {
            QCOMPARE(KXHelpers::language2CodeFor(text), u"un"_s);
            QCOMPARE(KXHelpers::language3CodeFor(text), u"und"_s);
            QCOMPARE(KXHelpers::languageForCode3(text), u"undetermined"_s);
            QCOMPARE(KXHelpers::standardizedLanguage3CodeFor(text), u"und"_s);
        }
    }

    void standardizedCodesMapFifteenBibliographicOnes_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("standardized");
        const QString pairs =
            u"alb sqi arm hye baq eus tib bod bur mya cze ces chi zho ger deu dut nld gre ell fre fra "
            "per fas ice isl rum ron slo slk"_s;
        const QStringList codes = pairs.split(u' ');
        QCOMPARE(codes.size(), 30);
        for (qsizetype i = 0; i < codes.size(); i += 2)
            QTest::newRow(qPrintable(codes.at(i))) << codes.at(i) << codes.at(i + 1);
        // Known to the standard, and left unmapped on purpose.
        for (const QString &code : {u"mac"_s, u"mao"_s, u"may"_s, u"wel"_s, u"geo"_s})
            QTest::newRow(qPrintable(code)) << code << u"und"_s;
        QTest::newRow("already there") << u"deu"_s << u"deu"_s;
        QTest::newRow("two letters") << u"de"_s << u"de"_s;
        QTest::newRow("a name") << u"German"_s << u"German"_s;
        QTest::newRow("unknown") << u"qqq"_s << u"und"_s;
    }

    void standardizedCodesMapFifteenBibliographicOnes()
    {
        QFETCH(QString, code);
        QTEST(KXHelpers::standardizedLanguage3CodeFor(code), "standardized");
    }

private:
    KXHelpers m_helpers;
};

TESSARAY_TEST(LanguagesTest)
#include "LanguagesTest.moc"
