// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What `edit` asks of the movies among its files, read from its own options: the movie editor
// takes it as it is, with nothing to parse again.
#include "VideoModifier.h"

#include <QStringList>

struct MovieEdit {
    VideoWishes wishes;
    QString outputDir;
    bool inPlace = false;
    QStringList unsupported;  // options given that movies don't take
    QStringList files;
};
