// SPDX-License-Identifier: GPL-3.0-or-later
// The screens speak German in full: every text the sources hand to Qt's translation system has a
// finished German translation with the same placeholders, no visible text in QML or in a view
// model goes around the translation system, and the English names the modules give (tag labels,
// album, resource and IPTC section names) are all among the translated.
#include "Albums.h"
#include "AuxiliaryImageType.h"
#include "IptcEditorModel.h"
#include "IptcKeys.h"
#include "Library.h"
#include "TSKey.h"
#include "TSMeanings.h"
#include "Isolation.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

struct Message {
    QStringList translations;  // one, or the numerus forms
    QString type;              // "unfinished", "vanished", "obsolete" or empty
};
// "context\nsource" → message
using Catalogue = QMap<QString, Message>;

Catalogue readTs(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    Catalogue out;
    QXmlStreamReader xml(&file);
    QString context, source;
    Message message;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            if (xml.name() == u"name") context = xml.readElementText();
            else if (xml.name() == u"message") message = {};
            else if (xml.name() == u"source") source = xml.readElementText();
            else if (xml.name() == u"translation") {
                message.type = xml.attributes().value("type").toString();
                // Either text of its own or numerus forms inside.
                QString text;
                while (!(xml.isEndElement() && xml.name() == u"translation") && !xml.atEnd()) {
                    xml.readNext();
                    if (xml.isCharacters()) text += xml.text();
                    if (xml.isStartElement() && xml.name() == u"numerusform") message.translations << xml.readElementText();
                }
                if (message.translations.isEmpty()) message.translations << text;
            }
        } else if (xml.isEndElement() && xml.name() == u"message") {
            out.insert(context + '\n' + source, message);
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return out;
}

QString sourceDir() { return QStringLiteral(TESSORIN_SOURCE_DIR); }
QString germanTs() { return sourceDir() + "/translations/tessorin_de.ts"; }

// %1, %2, %n, as a sorted list: a translation must use the same.
QStringList placeholders(const QString& text) {
    QStringList out;
    static const QRegularExpression re(QStringLiteral("%(\\d|n)"));
    for (auto it = re.globalMatch(text); it.hasNext();) out << it.next().captured();
    out.sort();
    out.removeDuplicates();
    return out;
}

class TranslationTest : public testsupport::IsolatedTest {};

TEST_F(TranslationTest, EveryTextTheSourcesMarkHasAFinishedGermanTranslation) {
    // A fresh catalogue from the sources, as `update_translations` would gather it.
    const QString fresh = QDir(isolation().root()).filePath("fresh.ts");
    QProcess lupdate;
    lupdate.setProcessChannelMode(QProcess::MergedChannels);
    lupdate.start(QStringLiteral(TESSORIN_LUPDATE),
                  {"-silent", "-locations", "none", "-extensions", "cpp,h,qml", sourceDir() + "/app/main.cpp",
                   sourceDir() + "/app/viewmodels", sourceDir() + "/app/qml", sourceDir() + "/src/iptc/IptcEditorModel.cpp",
                   "-ts", fresh});
    ASSERT_TRUE(lupdate.waitForFinished(120'000));
    ASSERT_EQ(lupdate.exitCode(), 0) << lupdate.readAll().toStdString();
    const Catalogue marked = readTs(fresh);
    // The screens have a few hundred texts; an empty catalogue would mean lupdate found nothing.
    ASSERT_GT(marked.size(), 250);

    const Catalogue german = readTs(germanTs());
    for (auto it = marked.begin(); it != marked.end(); ++it) {
        const QString where = QString(it.key()).replace('\n', QStringLiteral(": "));
        SCOPED_TRACE(where.toStdString());
        const auto found = german.find(it.key());
        if (found == german.end()) {
            ADD_FAILURE() << "not in " << germanTs().toStdString();
            continue;
        }
        EXPECT_TRUE(found->type.isEmpty()) << "marked " << found->type.toStdString();
        const QString source = it.key().section('\n', 1);
        for (const QString& translation : found->translations) {
            EXPECT_FALSE(translation.trimmed().isEmpty());
            // A plural form may leave out the number ("ein Foto"), never put in another.
            QStringList expected = placeholders(source), got = placeholders(translation);
            if (!got.contains("%n")) expected.removeAll("%n");
            EXPECT_EQ(got, expected) << translation.toStdString();
        }
    }
}

TEST_F(TranslationTest, NoVisibleTextGoesAroundTheTranslationSystem) {
    // QML: a property that shows text, given a literal with words in it.
    static const QRegularExpression qmlLiteral(QStringLiteral(
        R"(\b(text|title|placeholderText|acceptLabel|rejectLabel|Accessible\.name|Accessible\.description|ToolTip\.text)\s*:\s*"[^"]*[A-Za-z]{2})"));
    // C++: a sentence or a capitalised word made into a string outside a log line.
    static const QRegularExpression cppLiteral(QStringLiteral(R"(QStringLiteral\("[A-Z][a-z]+( [A-Za-z]+)*[.!?]?"\))"));
    QStringList found;
    for (QDirIterator it(sourceDir() + "/app/qml", {"*.qml"}, QDir::Files); it.hasNext();) {
        QFile file(it.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        int line = 0;
        for (const QString& text : QString::fromUtf8(file.readAll()).split('\n')) {
            ++line;
            if (!text.trimmed().startsWith("//") && qmlLiteral.match(text).hasMatch())
                found << QStringLiteral("%1:%2: %3").arg(it.fileName()).arg(line).arg(text.trimmed());
        }
    }
    for (QDirIterator it(sourceDir() + "/app/viewmodels", {"*.cpp", "*.h"}, QDir::Files); it.hasNext();) {
        QFile file(it.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        int line = 0;
        for (const QString& text : QString::fromUtf8(file.readAll()).split('\n')) {
            ++line;
            const auto match = cppLiteral.match(text);
            // Names in the code (roles, kinds, symbols) are single lower-case words and don't match.
            if (match.hasMatch() && !text.contains("Log::") && match.captured().contains(' '))
                found << QStringLiteral("%1:%2: %3").arg(it.fileName()).arg(line).arg(text.trimmed());
        }
    }
    EXPECT_TRUE(found.isEmpty()) << found.join('\n').toStdString();
}

TEST_F(TranslationTest, TheModulesNamesAreTranslated) {
    const Catalogue german = readTs(germanTs());
    auto expectTranslated = [&](const char* context, const QString& english) {
        const auto it = german.find(QString::fromLatin1(context) + '\n' + english);
        EXPECT_TRUE(it != german.end() && it->type.isEmpty()) << context << ": " << english.toStdString();
    };
    // Tag labels as rows show them; the internal names in capitals never show.
    static const QRegularExpression internal(QStringLiteral("^[A-Z0-9_]*$|^SourceImageNumber"));
    for (TSKey key : TSKeys::allCases())
        if (!internal.match(rawValue(key)).hasMatch()) expectTranslated("TSKey", rawValue(key));
    for (IptcSections section : IptcEditorModel::sections()) expectTranslated("TSKey", iptc::sectionTitle(section));
    for (AuxiliaryImageType type : allAuxiliaryImageTypes) expectTranslated("Resources", label(type));
    for (int type = 1; type <= 12; ++type) expectTranslated("Resources", library::resourceTypeText(type));
    expectTranslated("Albums", Albums::allPhotosTitle(true));
    expectTranslated("Albums", Albums::allPhotosTitle(false));
    // The words values decode to, as the tag table shows them.
    static const QRegularExpression word(QStringLiteral("[a-z]{3}"));
    for (const TagsMeaning& m : TSMeanings::shared().meanings.meaningsDictionary)
        for (const QString& text : m.meanings)
            if (word.match(text).hasMatch()) expectTranslated("TagValues", text);
    for (qint64 flash = 0; flash < 128; ++flash)
        for (const QString& part : TSMeanings::flashText(flash).split(", ")) expectTranslated("TagValues", part);
    library::Library lib({QDir(isolation().root()).filePath("photos")}, QDir(isolation().root()).filePath("library.sqlite"));
    for (const TSCollection& c : Albums::collections(lib)) expectTranslated("Albums", c.title);
}

// The program loads the catalogue of the user's language: its help, as German and English users
// read it.
TEST_F(TranslationTest, TheAppSpeaksTheUsersLanguage) {
    auto help = [](const QString& language) {
        QProcess app;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("LC_ALL", language);
        env.insert("LANGUAGE", language.section('.', 0, 0));
        env.insert("QT_QPA_PLATFORM", "offscreen");
        app.setProcessEnvironment(env);
        app.start(QStringLiteral(TESSORIN_APP_BINARY), {"--help"});
        EXPECT_TRUE(app.waitForFinished(60'000));
        return QString::fromUtf8(app.readAllStandardOutput());
    };
    EXPECT_TRUE(help("de_DE.UTF-8").contains(QString::fromUtf8("Das zuletzt angesehene Foto öffnen.")));
    EXPECT_TRUE(help("C.UTF-8").contains("Open the photo last viewed."));
}

}  // namespace
