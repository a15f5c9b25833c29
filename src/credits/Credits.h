// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the program is made of besides its own code: the libraries, with the versions loaded
// and their licences, and the data it ships, with the attribution their licences ask for. The
// About screen and `tessorin-cli --credits` show the same lines.
#include <QList>
#include <QString>
#include <QStringList>

namespace credits {

struct Credit {
    QString name;     // "exiv2", "Place names"
    QString detail;   // a library's version in use; the source of data
    QString licence;  // as its authors name it
};

// The program's own licence.
inline constexpr char programLicence[] = "GPL-3.0-or-later";

// The libraries both the app and the command-line tool link.
QList<Credit> libraries();
// The data that ships with the program; OpenStreetMap's terms while the standard map's tiles
// come from its servers.
QList<Credit> data();

// "exiv2 0.27.6, GPL-2.0-or-later", "Place names: GeoNames (geonames.org), CC BY 4.0".
QString libraryLine(const Credit& credit);
QString dataLine(const Credit& credit);

// The whole text: the program and its licence, the libraries (those given added) and the data.
QString text(const QString& program, const QList<Credit>& moreLibraries = {});

}  // namespace credits
