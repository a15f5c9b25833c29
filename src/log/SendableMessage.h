// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A log message already turned into text, so that it captures the caller's state at the moment
// of the call and can cross to the log's worker thread. Copies share the text.
#include <QString>
#include <QVariant>

class SendableMessage {
public:
    // A map gives one line per entry ("key → value"), a list one line per element, anything
    // else one line; each line opens with the arrow, so even a one-liner sits below its bracket.
    explicit SendableMessage(const QVariant& message);

    const QString& text() const { return text_; }

    // Line feed, tab and the hooked arrow that open every line of a message.
    static QString arrow();

private:
    QString text_;
};
