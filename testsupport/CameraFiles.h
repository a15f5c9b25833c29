// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Camera raw files in containers of their own, made for tests from corpus bytes, as far as
// readers look into them.
#include <QByteArray>

namespace testsupport {

// A Canon CR3: an ISO-BMFF file of brand "crx " whose Canon box holds `tiff` (a TIFF
// directory, such as a DNG's) as its CMT1.
QByteArray canonCr3(const QByteArray& tiff);
// A Fujifilm RAF: its header, then `jpeg` (which must begin with its Exif segment, as a
// camera's does) and an empty TIFF of raw data.
QByteArray fujifilmRaf(const QByteArray& jpeg);

}  // namespace testsupport
