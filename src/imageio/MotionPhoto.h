// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Android motion photos: a JPEG or HEIF with a short movie behind the picture. Three layouts
// are known: Google's Motion Photo (GCamera:MotionPhoto and the container directory's item
// lengths, counted from the end of the file), the older MicroVideo (GCamera:MicroVideoOffset,
// the movie's distance from the end), and Samsung's (a "MotionPhoto_Data" block in the trailer
// that its SEFH/SEFT directory lists, or an 'mpvd' box at the top of a HEIF). Whatever the
// metadata says, the movie counts only where an ISO BMFF 'ftyp' box really starts it.
#include <QByteArray>
#include <QString>

#include <optional>
#include <string>

namespace imageio {

class Rewritten;

struct MotionPhoto {
    enum class Kind { Google, MicroVideo, Samsung };
    Kind kind = Kind::Google;
    qint64 offset = 0;  // where the movie starts in the file
    qint64 length = 0;
    std::optional<qint64> presentationTimestampUs;  // the frame the still was taken from
};

// "Motion Photo", "MicroVideo", "Samsung Motion Photo".
QString kindName(MotionPhoto::Kind kind);

// The movie of a motion photo. Nothing and no error for a photo that claims no movie; nothing
// with the reason in `error` when its claim is broken (a length or offset outside the file,
// directories that disagree, no movie where they point). Reads only the metadata, the
// directories and the movie's first box, so a mapped file is read no further.
std::optional<MotionPhoto> findMotionPhoto(const QByteArray& file, QString* error = nullptr);

// Whether an exiv2 XMP key says where a motion photo's movie is: such keys describe the file's
// layout, not the picture, and stay as long as the movie does.
bool isMotionPhotoKey(const std::string& xmpKey);

// `file` from `from` on, with the movie and what holds it (a Samsung trailer block and its
// directory entry, or the whole trailing movie) left out, appended to `out` as kept ranges and
// new bytes. For JPEG; `motion` is what findMotionPhoto gave for `file`.
void keepWithoutMovie(Rewritten& out, const QByteArray& file, qint64 from, const MotionPhoto& motion);

}  // namespace imageio
