// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The screens' colours, light or dark as the desktop prefers (the freedesktop portal's
// org.freedesktop.appearance color-scheme, read over D-Bus and followed as it changes) or as the
// user overrides it in the settings ("system", "light", "dark").
#include <QColor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

class ColorScheme : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool dark READ dark NOTIFY changed)
    Q_PROPERTY(QString preference READ preference WRITE setPreference NOTIFY changed)
    Q_PROPERTY(QColor background READ background NOTIFY changed)
    Q_PROPERTY(QColor groupedBackground READ groupedBackground NOTIFY changed)
    Q_PROPERTY(QColor card READ card NOTIFY changed)
    Q_PROPERTY(QColor bar READ bar NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor secondaryText READ secondaryText NOTIFY changed)
    Q_PROPERTY(QColor fill READ fill NOTIFY changed)
    Q_PROPERTY(QColor separator READ separator NOTIFY changed)
    Q_PROPERTY(QColor tint READ tint NOTIFY changed)
    Q_PROPERTY(QColor destructive READ destructive NOTIFY changed)
    Q_PROPERTY(QColor overlay READ overlay NOTIFY changed)
    Q_PROPERTY(QColor icon READ icon NOTIFY changed)
    // The icon colour as image://icon/ takes it: "rrggbb".
    Q_PROPERTY(QString iconTone READ iconTone NOTIFY changed)

public:
    // The settings key of the user's choice.
    static constexpr char settingsKey[] = "colorScheme";
    // The portal's values: 0 no preference, 1 dark, 2 light.
    enum DesktopPreference { noPreference = 0, prefersDark = 1, prefersLight = 2 };

    // Listens to the portal on the given bus (the session's by default).
    explicit ColorScheme(QObject* parent = nullptr, QDBusConnection bus = QDBusConnection::sessionBus());

    bool dark() const;
    QString preference() const;
    void setPreference(const QString& preference);
    // What the desktop said last, as the portal numbers it.
    void setDesktopPreference(uint value);

    QColor background() const { return dark() ? QColor(0x1C, 0x1C, 0x1E) : QColor(0xFF, 0xFF, 0xFF); }
    QColor groupedBackground() const { return dark() ? QColor(0x00, 0x00, 0x00) : QColor(0xF2, 0xF2, 0xF7); }
    QColor card() const { return dark() ? QColor(0x1C, 0x1C, 0x1E) : QColor(0xFF, 0xFF, 0xFF); }
    QColor bar() const { return dark() ? QColor(0x24, 0x24, 0x26) : QColor(0xF9, 0xF9, 0xF9); }
    QColor text() const { return dark() ? QColor(0xFF, 0xFF, 0xFF) : QColor(0x1C, 0x1C, 0x1E); }
    QColor secondaryText() const { return dark() ? QColor(0x98, 0x98, 0x9F) : QColor(0x6C, 0x6C, 0x70); }
    QColor fill() const { return dark() ? QColor(0x3A, 0x3A, 0x3C) : QColor(0xE5, 0xE5, 0xEA); }
    QColor separator() const { return dark() ? QColor(0x48, 0x48, 0x4A) : QColor(0xD1, 0xD1, 0xD6); }
    QColor tint() const { return dark() ? QColor(0x4C, 0x9A, 0xFF) : QColor(0x1E, 0x6F, 0xD9); }
    QColor destructive() const { return dark() ? QColor(0xFF, 0x45, 0x3A) : QColor(0xD7, 0x00, 0x15); }
    QColor overlay() const { return dark() ? QColor(0x1C, 0x1C, 0x1E, 0xE6) : QColor(0xFF, 0xFF, 0xFF, 0xE6); }
    // The monochrome icons (drawn black in their files), recoloured to stand out in dark.
    QColor icon() const { return dark() ? QColor(0xE5, 0xE5, 0xEA) : QColor(0x3C, 0x3C, 0x43); }
    QString iconTone() const { return icon().name().mid(1); }

    // WCAG's contrast ratio of two opaque colours, 1 to 21.
    static double contrast(const QColor& a, const QColor& b);

signals:
    void changed();

private slots:
    // Takes the whole message: a slot of (QString, QString, QDBusVariant) fails to connect in Qt 6.4.
    void portalSettingChanged(const QDBusMessage& message);

private:
    uint desktop_ = noPreference;
    void listenToPortal(QDBusConnection bus);
};
