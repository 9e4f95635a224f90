#include "support/LayerCheck.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QLibraryInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using support::LayerCheck;

class LayersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowledgeFlowsDownOnly()
    {
        QVERIFY(QFile::exists(QLibraryInfo::path(QLibraryInfo::HeadersPath) + u"/QtCore/QObject"_s));
        const LayerCheck check(QStringLiteral(TESSARAY_SOURCE_DIR "/src"));
        QVERIFY2(check.fileCount() > 40, qPrintable(QString::number(check.fileCount())));
        QVERIFY2(check.offences().isEmpty(), qPrintable(check.offences().join(u'\n')));
    }

    void wouldCatch_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("offence");
        const auto row = [](const char *name, const QString &file, const QByteArray &content,
                            const QString &offence) { QTest::newRow(name) << file << content << offence; };
        row("nothing wrong", u"jobs/A.cpp"_s,
            "#include \"steps/Step.h\"\n#include \"platform/Ground.h\"\n#include <QObject>\n#include "
            "<map>\n",
            {});
        row("its own module", u"tools/A.cpp"_s, "#include \"tools/Tool.h\"\n#include \"A.moc\"\n", {});
        row("upward", u"tools/A.cpp"_s, "#include \"app/Top.h\"\n",
            u"tools/A.cpp: knows app/Top.h above it"_s);
        row("one module up", u"platform/A.h"_s, "#include \"tools/Tool.h\"\n",
            u"platform/A.h: knows tools/Tool.h above it"_s);
        row("indented, with blanks", u"tools/A.h"_s, "  #  include   \"app/Top.h\"",
            u"tools/A.h: knows app/Top.h above it"_s);
        row("tools do not know the steps", u"tools/A.cpp"_s, "#include \"steps/Step.h\"\n",
            u"tools/A.cpp: knows steps/Step.h above it"_s);
        row("selection does not know steps", u"selection/A.cpp"_s, "#include \"steps/Step.h\"\n",
            u"selection/A.cpp: knows steps/Step.h above it"_s);
        row("steps know tools", u"steps/A.cpp"_s, "#include \"tools/Tool.h\"\n", {});
        row("no module knows the window", u"cli/A.cpp"_s, "#include \"window/Pane.h\"\n",
            u"cli/A.cpp: knows window/Pane.h above it"_s);
        row("the window knows the app", u"window/A.cpp"_s, "#include \"app/Top.h\"\n#include <QWidget>\n",
            {});
        row("a widget", u"app/A.cpp"_s, "#include <QWidget>\n",
            u"app/A.cpp: takes <QWidget>, which is not of Qt Core"_s);
        row("a colour", u"media/A.h"_s, "#include <QColor>\n",
            u"media/A.h: takes <QColor>, which is not of Qt Core"_s);
        row("a widget with its module", u"cli/A.cpp"_s, "#include <QtWidgets/QApplication>\n",
            u"cli/A.cpp: takes <QtWidgets/QApplication>, which is not of Qt Core"_s);
        row("a whole module", u"jobs/A.cpp"_s, "#include <QtGui>\n",
            u"jobs/A.cpp: takes <QtGui>, which is not of Qt Core"_s);
        row("a header in small letters", u"jobs/A.cpp"_s, "#include <qpainter.h>\n",
            u"jobs/A.cpp: takes <qpainter.h>, which is not of Qt Core"_s);
        row("Core with its module", u"jobs/A.cpp"_s,
            "#include <QtCore/QTimer>\n#include <QtGlobal>\n#include <qglobal.h>\n", {});
        row("a path without its module", u"tools/A.cpp"_s, "#include \"Tool.h\"\n",
            u"tools/A.cpp: includes \"Tool.h\", which is not the path of a file of ours"_s);
        row("a road around the modules", u"tools/A.cpp"_s, "#include \"../app/Top.h\"\n",
            u"tools/A.cpp: includes \"../app/Top.h\", which is not the path of a file of ours"_s);
        row("no module", u"misc/A.cpp"_s, "", u"misc/A.cpp: stands in no module"_s);
        row("a circle", u"tools/Back.h"_s, "#include \"tools/Tool.h\"\n",
            u"tools/Tool.h: is in a circle with tools/Tool.h, tools/Back.h"_s);
        row("a circle of one", u"app/A.h"_s, "#include \"app/A.h\"\n",
            u"app/A.h: is in a circle with app/A.h"_s);
        row("a link upward", u"media/CMakeLists.txt"_s,
            "tessaray_module(media MODULES platform tools\n  app SOURCES A.cpp)\n",
            u"media/CMakeLists.txt: links app above it"_s);
        row("a link by name", u"media/CMakeLists.txt"_s,
            "target_link_libraries(tessaray_media PUBLIC tessaray_jobs)\n",
            u"media/CMakeLists.txt: links jobs above it"_s);
        row("a module linked", u"steps/CMakeLists.txt"_s,
            "target_link_libraries(tessaray_steps PUBLIC Qt6::Gui)\n",
            u"steps/CMakeLists.txt: links Qt Gui"_s);
        row("links downward", u"steps/CMakeLists.txt"_s,
            "tessaray_module(steps MODULES platform tools media SOURCES A.cpp)\n", {});
    }

    void wouldCatch()
    {
        const support::Scratch scratch;
        scratch.write(u"src/CMakeLists.txt"_s, "add_subdirectory(app)\n");
        scratch.write(u"src/platform/Ground.h"_s, "#pragma once\n");
        scratch.write(u"src/tools/Tool.h"_s, "#include \"platform/Ground.h\"\n#include \"tools/Back.h\"\n");
        scratch.write(u"src/tools/Back.h"_s, "#pragma once\n");
        scratch.write(u"src/steps/Step.h"_s, "#include \"tools/Tool.h\"\n");
        scratch.write(u"src/app/Top.h"_s, "#include \"tools/Tool.h\"\n");
        scratch.write(u"src/window/Pane.h"_s, "#include <QtWidgets/QWidget>\n");
        QCOMPARE(LayerCheck(scratch.path(u"src"_s)).offences(), QStringList());
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QString, offence);
        scratch.write(u"src/"_s + file, content);
        const QStringList expected = offence.isNull() ? QStringList() : QStringList{offence};
        QCOMPARE(LayerCheck(scratch.path(u"src"_s)).offences(), expected);
    }
};

TESSARAY_TEST(LayersTest)
#include "LayersTest.moc"
