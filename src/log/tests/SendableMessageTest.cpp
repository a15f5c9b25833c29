// SPDX-License-Identifier: GPL-3.0-or-later
#include "SendableMessage.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QVariantMap>

namespace {

const QString arrow = QStringLiteral("\n\t\u21AA\uFE0F");

TEST(SendableMessage, PlainMessagesTakeOneArrowLine) {
    EXPECT_EQ(SendableMessage(QStringLiteral("hello")).text(), arrow + "hello");
    EXPECT_EQ(SendableMessage(42).text(), arrow + "42");
    EXPECT_EQ(SendableMessage(true).text(), arrow + "true");
    EXPECT_EQ(SendableMessage(QVariant()).text(), arrow + "nil");
    EXPECT_EQ(SendableMessage(QByteArray(3, 'x')).text(), arrow + "3 bytes");
    EXPECT_EQ(SendableMessage::arrow(), arrow);
}

TEST(SendableMessage, DictionaryGivesOneLinePerEntryInItsOrder) {
    QVariantMap map{{"b", 2}, {"a", "text"}};
    EXPECT_EQ(SendableMessage(map).text(), arrow + "a \u2192 text" + arrow + "b \u2192 2");

    QVariantHash hash{{"only", QVariantList{"x", 1}}};
    EXPECT_EQ(SendableMessage(hash).text(), arrow + "only \u2192 [\"x\", 1]");
}

TEST(SendableMessage, ArrayGivesOneLinePerElement) {
    EXPECT_EQ(SendableMessage(QVariantList{"one", 2, QVariantMap{{"k", "v"}}}).text(),
              arrow + "one" + arrow + "2" + arrow + "[\"k\": \"v\"]");
    EXPECT_EQ(SendableMessage(QStringList{"a", "b"}).text(), arrow + "a" + arrow + "b");
    EXPECT_EQ(SendableMessage(QVariantList{}).text(), QString());
    EXPECT_EQ(SendableMessage(QVariantList{QVariantMap{}}).text(), arrow + "[:]");
}

}  // namespace
