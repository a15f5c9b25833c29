// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScanProgressViewModel.h"

#include "Library.h"

void ScanProgressViewModel::start(library::Library* library) {
    disconnect(connection_);
    running_ = true;
    seen_ = read_ = left_ = 0;
    connection_ = connect(library, &library::Library::scanProgress, this, [this](int seen, int read, int left) {
        seen_ = seen;
        read_ = read;
        left_ = left;
        emit changed();
    });
    emit changed();
}

void ScanProgressViewModel::finish() {
    disconnect(connection_);
    running_ = false;
    emit changed();
}

QString ScanProgressViewModel::text() const {
    if (!running_) return {};
    if (read_ + left_ == 0) return tr("Looking for photos...");
    return tr("%L1 files found, %L2 read, %L3 left").arg(seen_).arg(read_).arg(left_);
}
