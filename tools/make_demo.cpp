// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the demo album: photos and a short movie drawn here, tagged by our own writers (the
// image metadata writer and the movie writer), so that a fresh checkout has something real to
// show without shipping sample files. Usage: make-demo DIR
#include "ImageProperties.h"
#include "ImageWriter.h"
#include "MovieReader.h"
#include "MovieWriter.h"
#include "PropertyKeys.h"
#include "VideoModifier.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QTimeZone>

#include <libheif/heif.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <cmath>
#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

enum class Land { arches, harbour, ocean, bridge, blossom, peaks, city, tableMountain, shapes };

struct Scene {
    QColor skyTop, skyBottom, disc, land;
    Land kind;
    double discX, discY;  // of the picture's size
};

struct Camera {
    const char* make;
    const char* model;
    const char* lens;
    const char* lensMake;
    const char* software;
    double exposure, fNumber, focal;
    int iso, focal35, flash;
};

struct Demo {
    const char* file;
    const char* place;
    Scene scene;
    std::optional<Camera> camera;
    const char* date;  // "yyyy:MM:dd HH:mm:ss", local time of the place
    const char* offset;
    std::optional<QPointF> position;  // latitude, longitude
    double altitude;
    int orientation;
    const char* caption;
    const char* keywords;
    const char* artist;
    const char* city;
    const char* country;
    const char* comment = nullptr;
};

// A landscape of the given kind: sky, sun or moon, land, and the place's name.
QImage drawScene(QSize size, const Scene& s, const QString& title, const QString& subtitle) {
    QImage image(size, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const double w = size.width(), h = size.height();
    QLinearGradient sky(0, 0, 0, h);
    sky.setColorAt(0, s.skyTop);
    sky.setColorAt(1, s.skyBottom);
    p.fillRect(image.rect(), sky);

    // Sun or moon with a soft halo.
    const QPointF c(s.discX * w, s.discY * h);
    const double r = std::min(w, h) * 0.09;
    QRadialGradient halo(c, r * 3.5);
    QColor glow = s.disc;
    glow.setAlpha(110);
    halo.setColorAt(0, glow);
    halo.setColorAt(1, QColor(255, 255, 255, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(halo);
    p.drawEllipse(c, r * 3.5, r * 3.5);
    p.setBrush(s.disc);
    p.drawEllipse(c, r, r);

    QRandomGenerator rng(uint(s.kind) * 7919u + 17u);
    const double ground = h * 0.68;
    QPainterPath land;
    switch (s.kind) {
    case Land::peaks:
    case Land::tableMountain: {
        land.moveTo(0, h);
        if (s.kind == Land::peaks) {
            const double xs[] = {0, .12, .22, .31, .38, .46, .55, .63, .74, .86, 1};
            const double ys[] = {.70, .52, .40, .22, .30, .18, .35, .28, .47, .58, .66};
            for (int i = 0; i < 11; ++i) land.lineTo(xs[i] * w, ys[i] * h);
        } else {
            land.lineTo(0, .72 * h);
            land.lineTo(.18 * w, .55 * h);
            land.lineTo(.26 * w, .38 * h);
            land.lineTo(.70 * w, .36 * h);
            land.lineTo(.80 * w, .50 * h);
            land.lineTo(w, .62 * h);
        }
        land.lineTo(w, h);
        land.closeSubpath();
        p.setBrush(s.land);
        p.drawPath(land);
        if (s.kind == Land::peaks) {  // snow on the tops
            p.setBrush(QColor(250, 245, 250, 220));
            QPainterPath snow;
            snow.moveTo(.31 * w, .22 * h);
            snow.lineTo(.335 * w, .27 * h);
            snow.lineTo(.29 * w, .26 * h);
            snow.closeSubpath();
            snow.moveTo(.46 * w, .18 * h);
            snow.lineTo(.49 * w, .25 * h);
            snow.lineTo(.43 * w, .24 * h);
            snow.closeSubpath();
            p.drawPath(snow);
        }
        break;
    }
    case Land::city: {
        p.setBrush(s.land);
        double x = 0;
        while (x < w) {
            const double bw = w * (0.04 + rng.generateDouble() * 0.06);
            const double bh = h * (0.18 + rng.generateDouble() * 0.5);
            p.setBrush(s.land);
            p.drawRect(QRectF(x, h - bh, bw - 2, bh));
            p.setBrush(QColor(255, 214, 110));
            for (double wy = h - bh + 10; wy < h - 12; wy += 16)
                for (double wx = x + 6; wx < x + bw - 10; wx += 12)
                    if (rng.bounded(3) == 0) p.drawRect(QRectF(wx, wy, 5, 7));
            x += bw;
        }
        break;
    }
    case Land::arches: {
        p.setBrush(s.land);
        const QRectF wall(w * 0.12, h * 0.38, w * 0.76, h * 0.62);
        QPainterPath body;
        body.addRect(wall);
        for (int row = 0; row < 3; ++row)
            for (int i = 0; i < 8; ++i) {
                const double aw = wall.width() / 8 * 0.6;
                const double ax = wall.left() + (i + 0.2) * wall.width() / 8;
                const double ay = wall.top() + 12 + row * wall.height() / 4;
                QPainterPath arch;
                arch.addRoundedRect(QRectF(ax, ay, aw, wall.height() / 4 - 24), aw / 2, aw / 2);
                body = body.subtracted(arch);
            }
        p.drawPath(body);
        p.fillRect(QRectF(0, h * 0.9, w, h * 0.1), s.land.darker(130));
        break;
    }
    case Land::harbour:
    case Land::ocean:
    case Land::bridge: {
        QLinearGradient sea(0, ground, 0, h);
        sea.setColorAt(0, s.land.lighter(130));
        sea.setColorAt(1, s.land);
        p.fillRect(QRectF(0, ground, w, h - ground), sea);
        p.setPen(QPen(QColor(255, 255, 255, 90), 2));
        for (int i = 0; i < 14; ++i) {
            const double y = ground + 10 + rng.generateDouble() * (h - ground - 20);
            const double x = rng.generateDouble() * w;
            p.drawLine(QPointF(x, y), QPointF(x + w * 0.08, y));
        }
        p.setPen(Qt::NoPen);
        if (s.kind == Land::harbour) {  // boats with masts
            for (int i = 0; i < 4; ++i) {
                const double bx = w * (0.12 + i * 0.21), by = ground + h * 0.1 + (i % 2) * h * 0.06;
                QPainterPath hull;
                hull.moveTo(bx, by);
                hull.lineTo(bx + w * 0.12, by);
                hull.lineTo(bx + w * 0.10, by + h * 0.04);
                hull.lineTo(bx + w * 0.02, by + h * 0.04);
                hull.closeSubpath();
                p.setBrush(i % 2 ? QColor(200, 50, 40) : QColor(240, 240, 235));
                p.drawPath(hull);
                p.setBrush(QColor(60, 60, 70));
                p.drawRect(QRectF(bx + w * 0.058, by - h * 0.16, 3, h * 0.16));
            }
        } else if (s.kind == Land::bridge) {  // a suspension bridge over the river
            const QColor red(190, 60, 45);
            p.setBrush(red);
            const double deck = ground - h * 0.06;
            p.drawRect(QRectF(0, deck, w, h * 0.025));
            for (double tx : {0.3, 0.75}) p.drawRect(QRectF(tx * w - 6, h * 0.22, 12, ground - h * 0.22));
            // Main cables in three spans, with hangers down to the deck.
            const QPointF spans[3][3] = {{{-0.15 * w, h * 0.23}, {0.075 * w, deck + h * 0.02}, {0.3 * w, h * 0.22}},
                                         {{0.3 * w, h * 0.22}, {0.525 * w, deck - h * 0.01}, {0.75 * w, h * 0.22}},
                                         {{0.75 * w, h * 0.22}, {0.975 * w, deck + h * 0.02}, {1.2 * w, h * 0.23}}};
            QPainterPath cable;
            for (const auto& sp : spans) {
                cable.moveTo(sp[0]);
                cable.quadTo(sp[1], sp[2]);
                p.setPen(QPen(red, 1));
                for (double t = 0.05; t < 1; t += 0.05) {
                    const QPointF at = (1 - t) * (1 - t) * sp[0] + 2 * (1 - t) * t * sp[1] + t * t * sp[2];
                    if (at.x() > 0 && at.x() < w) p.drawLine(at, QPointF(at.x(), deck));
                }
            }
            p.setPen(QPen(red, 2.5));
            p.setBrush(Qt::NoBrush);
            p.drawPath(cable);
            p.setPen(Qt::NoPen);
        } else {  // the opera house's sails
            p.setBrush(QColor(245, 242, 232));
            for (int i = 0; i < 4; ++i) {
                QPainterPath sail;
                const double sx = w * (0.55 + i * 0.06), sy = ground;
                sail.moveTo(sx, sy);
                sail.quadTo(sx + w * 0.02, sy - h * (0.2 - i * 0.03), sx + w * 0.09, sy - h * (0.17 - i * 0.03));
                sail.lineTo(sx + w * 0.08, sy);
                sail.closeSubpath();
                p.drawPath(sail);
            }
        }
        break;
    }
    case Land::blossom: {
        p.fillRect(QRectF(0, ground, w, h - ground), s.land);
        p.setBrush(QColor(90, 60, 50));
        p.drawRect(QRectF(w * 0.2, h * 0.35, w * 0.03, h * 0.4));
        p.drawRect(QRectF(w * 0.72, h * 0.3, w * 0.03, h * 0.45));
        for (int i = 0; i < 260; ++i) {
            const bool left = i % 2;
            const QPointF centre(w * (left ? 0.215 : 0.735), h * (left ? 0.33 : 0.28));
            const double a = rng.generateDouble() * 2 * M_PI, d = std::sqrt(rng.generateDouble()) * w * 0.17;
            p.setBrush(QColor(255, 170 + rng.bounded(50), 200 + rng.bounded(40), 200));
            p.drawEllipse(centre + QPointF(std::cos(a) * d, std::sin(a) * d * 0.7), w * 0.012, w * 0.012);
        }
        break;
    }
    case Land::shapes: {
        for (int i = 0; i < 9; ++i) {
            QColor col = QColor::fromHsv(rng.bounded(360), 120, 235, 170);
            p.setBrush(col);
            const double sz = std::min(w, h) * (0.1 + rng.generateDouble() * 0.25);
            const QPointF at(rng.generateDouble() * w, rng.generateDouble() * h);
            if (i % 2)
                p.drawEllipse(at, sz / 2, sz / 2);
            else
                p.drawRoundedRect(QRectF(at, QSizeF(sz, sz)), sz * 0.2, sz * 0.2);
        }
        break;
    }
    }

    // The place's name on a soft band at the bottom.
    const double band = h * 0.2;
    p.fillRect(QRectF(0, h - band, w, band), QColor(0, 0, 0, 90));
    QFont big("Sans", 10, QFont::DemiBold);
    big.setPixelSize(int(band * 0.38));
    p.setFont(big);
    p.setPen(Qt::white);
    p.drawText(QRectF(w * 0.05, h - band, w * 0.9, band * 0.62), Qt::AlignLeft | Qt::AlignBottom, title);
    QFont small("Sans", 10);
    small.setPixelSize(int(band * 0.18));
    p.setFont(small);
    p.setPen(QColor(255, 255, 255, 220));
    p.drawText(QRectF(w * 0.05, h - band * 0.36, w * 0.9, band * 0.3), Qt::AlignLeft | Qt::AlignVCenter, subtitle);
    return image;
}

// The stored pixels of an upright picture for an EXIF orientation: what a camera held that way
// writes, so that a viewer that applies the orientation shows it upright again.
QImage storedFor(const QImage& upright, int orientation) {
    switch (orientation) {
    case 3: return upright.transformed(QTransform().rotate(180));
    case 6: return upright.transformed(QTransform().rotate(-90));
    case 8: return upright.transformed(QTransform().rotate(90));
    default: return upright;
    }
}

imageio::PropertyDict tagsFor(const Demo& d) {
    imageio::PropertyDict changes;
    imageio::PropertyDict exif, tiff, gps, iptc;
    if (d.camera) {
        const Camera& c = *d.camera;
        tiff.insert(kCGImagePropertyTIFFMake, c.make);
        tiff.insert(kCGImagePropertyTIFFModel, c.model);
        tiff.insert(kCGImagePropertyTIFFOrientation, qint64(d.orientation));
        tiff.insert(kCGImagePropertyTIFFDateTime, d.date);
        if (c.software) tiff.insert(kCGImagePropertyTIFFSoftware, c.software);
        tiff.insert(kCGImagePropertyTIFFXResolution, 72.0);
        tiff.insert(kCGImagePropertyTIFFYResolution, 72.0);
        tiff.insert(kCGImagePropertyTIFFResolutionUnit, qint64(2));
        exif.insert(kCGImagePropertyExifLensModel, c.lens);
        exif.insert(kCGImagePropertyExifLensMake, c.lensMake);
        exif.insert(kCGImagePropertyExifDateTimeOriginal, d.date);
        exif.insert(kCGImagePropertyExifDateTimeDigitized, d.date);
        exif.insert(kCGImagePropertyExifOffsetTimeOriginal, d.offset);
        exif.insert(kCGImagePropertyExifExposureTime, c.exposure);
        exif.insert(kCGImagePropertyExifFNumber, c.fNumber);
        exif.insert(kCGImagePropertyExifExposureProgram, qint64(2));
        exif.insert(kCGImagePropertyExifISOSpeedRatings, QVariantList{qint64(c.iso)});
        exif.insert(kCGImagePropertyExifFocalLength, c.focal);
        exif.insert(kCGImagePropertyExifFocalLenIn35mmFilm, qint64(c.focal35));
        exif.insert(kCGImagePropertyExifFlash, qint64(c.flash));
        exif.insert(kCGImagePropertyExifMeteringMode, qint64(5));
        exif.insert(kCGImagePropertyExifWhiteBalance, qint64(0));
        exif.insert(kCGImagePropertyExifExposureBiasValue, 0.0);
    }
    if (d.comment) exif.insert(kCGImagePropertyExifUserComment, QString::fromUtf8(d.comment));
    if (d.artist) {
        tiff.insert(kCGImagePropertyTIFFArtist, d.artist);
        tiff.insert(kCGImagePropertyTIFFCopyright, QStringLiteral("© %1").arg(QString::fromUtf8(d.artist)));
    }
    if (d.position) {
        const double lat = d.position->x(), lon = d.position->y();
        gps.insert(kCGImagePropertyGPSLatitude, std::fabs(lat));
        gps.insert(kCGImagePropertyGPSLatitudeRef, lat >= 0 ? "N" : "S");
        gps.insert(kCGImagePropertyGPSLongitude, std::fabs(lon));
        gps.insert(kCGImagePropertyGPSLongitudeRef, lon >= 0 ? "E" : "W");
        gps.insert(kCGImagePropertyGPSAltitude, d.altitude);
        gps.insert(kCGImagePropertyGPSAltitudeRef, qint64(0));
    }
    if (d.caption) {
        iptc.insert(kCGImagePropertyIPTCCaptionAbstract, QString::fromUtf8(d.caption));
        iptc.insert(kCGImagePropertyIPTCObjectName, QString::fromUtf8(d.place));
    }
    if (d.keywords) {
        QVariantList words;
        for (const QString& k : QString::fromUtf8(d.keywords).split(',')) words << k.trimmed();
        iptc.insert(kCGImagePropertyIPTCKeywords, words);
    }
    if (d.city) iptc.insert(kCGImagePropertyIPTCCity, QString::fromUtf8(d.city));
    if (d.country) iptc.insert(kCGImagePropertyIPTCCountryPrimaryLocationName, QString::fromUtf8(d.country));
    if (d.artist && d.caption) iptc.insert(kCGImagePropertyIPTCByline, QVariantList{QString::fromUtf8(d.artist)});
    if (!exif.isEmpty()) changes.insert(kCGImagePropertyExifDictionary, exif);
    if (!tiff.isEmpty()) changes.insert(kCGImagePropertyTIFFDictionary, tiff);
    if (!gps.isEmpty()) changes.insert(kCGImagePropertyGPSDictionary, gps);
    if (!iptc.isEmpty()) changes.insert(kCGImagePropertyIPTCDictionary, iptc);
    return changes;
}

bool fail(const QString& what) {
    std::fprintf(stderr, "make-demo: %s\n", qPrintable(what));
    return false;
}

// A copied camera file keeps the time it was taken as its modification time; so do ours, so that
// lists sorted or labelled by file date read like a real album.
bool stampTime(const QString& path, const QDateTime& taken) {
    QFile file(path);
    return (file.open(QIODevice::ReadWrite) && file.setFileTime(taken, QFileDevice::FileModificationTime)) ||
           fail(path + ": cannot set its time");
}

QDateTime takenAt(const Demo& d) {
    if (!d.date) return QDateTime(QDate(2024, 6, 1), QTime(10, 0), Qt::UTC);
    const QDateTime local = QDateTime::fromString(QString::fromLatin1(d.date), "yyyy:MM:dd HH:mm:ss");
    const QString offset = QString::fromLatin1(d.offset);
    const int seconds = (offset.mid(1, 2).toInt() * 60 + offset.mid(4, 2).toInt()) * 60;
    return QDateTime(local.date(), local.time(), QTimeZone(offset.startsWith('-') ? -seconds : seconds));
}

bool saveBytes(const QString& path, const QByteArray& bytes) {
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return fail(path + ": " + out.errorString());
    return true;
}

// HEIC through libheif's encoder (x265); Qt has no writer for it.
std::optional<QByteArray> encodeHeic(const QImage& picture) {
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
    heif_context* ctx = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    heif_image* image = nullptr;
    heif_image_handle* handle = nullptr;
    std::optional<QByteArray> result;
    struct Writer {
        static heif_error write(heif_context*, const void* data, size_t size, void* userdata) {
            static_cast<QByteArray*>(userdata)->append(static_cast<const char*>(data), qsizetype(size));
            return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
        }
    };
    if (heif_context_get_encoder_for_format(ctx, heif_compression_HEVC, &encoder).code == heif_error_Ok &&
        heif_image_create(rgb.width(), rgb.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image).code ==
            heif_error_Ok &&
        heif_image_add_plane(image, heif_channel_interleaved, rgb.width(), rgb.height(), 8).code == heif_error_Ok) {
        int stride = 0;
        uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < rgb.height(); ++y) memcpy(plane + y * stride, rgb.constScanLine(y), size_t(rgb.width()) * 3);
        heif_encoder_set_lossy_quality(encoder, 60);
        heif_writer writer{1, &Writer::write};
        QByteArray bytes;
        if (heif_context_encode_image(ctx, image, encoder, nullptr, &handle).code == heif_error_Ok &&
            heif_context_write(ctx, &writer, &bytes).code == heif_error_Ok)
            result = bytes;
    }
    if (handle) heif_image_handle_release(handle);
    if (image) heif_image_release(image);
    if (encoder) heif_encoder_release(encoder);
    heif_context_free(ctx);
    return result;
}

bool makePhoto(const QDir& dir, const Demo& d) {
    const bool portrait = d.orientation == 6 || d.orientation == 8;
    const QString file = QString::fromLatin1(d.file);
    const bool heic = file.endsWith(".heic");
    QSize size = heic ? QSize(1024, 768) : QSize(1200, 800);
    if (portrait) size.transpose();
    const QString subtitle = d.caption ? QString::fromUtf8(d.caption)
                             : d.camera ? QString::fromUtf8(d.camera->model)
                                        : QStringLiteral("No tags at all");
    const QImage upright = drawScene(size, d.scene, QString::fromUtf8(d.place), subtitle);
    const QImage stored = storedFor(upright, d.orientation);

    QByteArray bytes;
    if (heic) {
        auto encoded = encodeHeic(stored);
        if (!encoded) return fail(file + ": HEIC encoding failed");
        bytes = *encoded;
    } else {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        const char* format = file.endsWith(".png") ? "PNG" : "JPEG";
        if (!stored.save(&buffer, format, 88)) return fail(file + ": encoding failed");
    }
    const imageio::PropertyDict changes = tagsFor(d);
    if (!changes.isEmpty()) {
        QString error;
        auto tagged = imageio::writeProperties(bytes, changes, &error);
        if (!tagged) return fail(file + ": " + error);
        bytes = *tagged;
    }
    return saveBytes(dir.filePath(file), bytes) && stampTime(dir.filePath(file), takenAt(d));
}

// A few seconds of a sunset over the river with the soft hum of a chord: H.264 video when
// libavcodec has it (MPEG-4 otherwise) and AAC sound, in a QuickTime movie.
bool encodeMovie(const QString& path, const Scene& scene, const QString& title) {
    const int width = 640, height = 360, fps = 24, frames = 72, rate = 44100;
    AVFormatContext* format = nullptr;
    if (avformat_alloc_output_context2(&format, nullptr, "mov", path.toUtf8().constData()) < 0)
        return fail(path + ": no QuickTime muxer");
    const AVCodec* videoCodec = avcodec_find_encoder_by_name("libx264");
    if (!videoCodec) videoCodec = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    const AVCodec* audioCodec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    AVStream* videoStream = avformat_new_stream(format, nullptr);
    AVStream* audioStream = avformat_new_stream(format, nullptr);
    AVCodecContext* video = avcodec_alloc_context3(videoCodec);
    AVCodecContext* audio = avcodec_alloc_context3(audioCodec);
    AVFrame* picture = av_frame_alloc();
    AVFrame* sound = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();
    SwsContext* sws = sws_getContext(width, height, AV_PIX_FMT_BGRA, width, height, AV_PIX_FMT_YUV420P,
                                     SWS_BICUBIC, nullptr, nullptr, nullptr);
    bool ok = videoCodec && audioCodec && videoStream && audioStream && video && audio && picture && sound &&
              packet && sws;
    const bool globalHeader = format->oformat->flags & AVFMT_GLOBALHEADER;
    if (ok) {
        video->width = width;
        video->height = height;
        video->time_base = AVRational{1, fps};
        video->framerate = AVRational{fps, 1};
        video->pix_fmt = AV_PIX_FMT_YUV420P;
        video->gop_size = 24;
        video->max_b_frames = 0;  // no reordering delay, so the movie lasts exactly its frames
        video->bit_rate = 1'200'000;
        if (globalHeader) video->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        if (videoCodec->id == AV_CODEC_ID_H264) av_opt_set(video->priv_data, "preset", "veryfast", 0);
        audio->sample_fmt = AV_SAMPLE_FMT_FLTP;
        audio->sample_rate = rate;
        av_channel_layout_default(&audio->ch_layout, 2);
        audio->bit_rate = 96'000;
        audio->time_base = AVRational{1, rate};
        if (globalHeader) audio->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        ok = avcodec_open2(video, videoCodec, nullptr) >= 0 &&
             avcodec_parameters_from_context(videoStream->codecpar, video) >= 0 &&
             avcodec_open2(audio, audioCodec, nullptr) >= 0 &&
             avcodec_parameters_from_context(audioStream->codecpar, audio) >= 0;
    }
    if (ok) {
        videoStream->time_base = video->time_base;
        audioStream->time_base = audio->time_base;
        picture->format = video->pix_fmt;
        picture->width = width;
        picture->height = height;
        sound->format = audio->sample_fmt;
        sound->nb_samples = audio->frame_size;
        sound->sample_rate = rate;
        ok = av_channel_layout_copy(&sound->ch_layout, &audio->ch_layout) >= 0 && av_frame_get_buffer(picture, 0) >= 0 &&
             av_frame_get_buffer(sound, 0) >= 0 &&
             avio_open(&format->pb, path.toUtf8().constData(), AVIO_FLAG_WRITE) >= 0 &&
             avformat_write_header(format, nullptr) >= 0;
    }
    auto drain = [&](AVCodecContext* enc, AVStream* stream, AVFrame* in, int64_t duration) {
        if (avcodec_send_frame(enc, in) < 0) return false;
        while (avcodec_receive_packet(enc, packet) == 0) {
            packet->duration = duration;  // the muxer counts the last frame's time too
            av_packet_rescale_ts(packet, enc->time_base, stream->time_base);
            packet->stream_index = stream->index;
            if (av_interleaved_write_frame(format, packet) < 0) return false;
        }
        return true;
    };
    int64_t samples = 0;
    const int64_t totalSamples = int64_t(frames) * rate / fps;
    for (int i = 0; ok && i < frames; ++i) {
        Scene moving = scene;
        moving.discY = scene.discY + 0.15 * i / frames;  // the sun goes down
        const QImage frame = drawScene(QSize(width, height), moving, title, QStringLiteral("Sunset over the Tagus"))
                                 .convertToFormat(QImage::Format_ARGB32);
        ok = av_frame_make_writable(picture) >= 0;
        const uint8_t* src[1] = {frame.constBits()};
        const int srcStride[1] = {int(frame.bytesPerLine())};
        if (ok) sws_scale(sws, src, srcStride, 0, height, picture->data, picture->linesize);
        picture->pts = i;
        ok = ok && drain(video, videoStream, picture, 1);
        // The sound up to the end of this picture: a quiet A minor chord that swells and fades.
        while (ok && samples < std::min(totalSamples, int64_t(i + 1) * rate / fps)) {
            ok = av_frame_make_writable(sound) >= 0;
            for (int n = 0; ok && n < sound->nb_samples; ++n) {
                const double t = double(samples + n) / rate;
                const double envelope = 0.12 * std::sin(M_PI * std::min(1.0, t / (double(frames) / fps)));
                const float v = float(envelope * (std::sin(2 * M_PI * 220 * t) + 0.6 * std::sin(2 * M_PI * 261.63 * t) +
                                                  0.5 * std::sin(2 * M_PI * 329.63 * t)) / 2.1);
                for (int c = 0; c < 2; ++c) reinterpret_cast<float*>(sound->data[c])[n] = v;
            }
            sound->pts = samples;
            samples += sound->nb_samples;
            ok = ok && drain(audio, audioStream, sound, sound->nb_samples);
        }
    }
    ok = ok && drain(video, videoStream, nullptr, 1) && drain(audio, audioStream, nullptr, audio->frame_size) &&
         av_write_trailer(format) >= 0;
    if (format && format->pb) avio_closep(&format->pb);
    sws_freeContext(sws);
    av_packet_free(&packet);
    av_frame_free(&picture);
    av_frame_free(&sound);
    avcodec_free_context(&video);
    avcodec_free_context(&audio);
    avformat_free_context(format);
    return ok || fail(path + ": movie encoding failed");
}

// The movie's date, place and camera go in through the movie writer, as an edit would put them.
bool makeMovie(const QDir& dir) {
    const Scene sunset{QColor(70, 60, 140), QColor(250, 160, 90), QColor(255, 226, 150), QColor(30, 70, 110),
                       Land::bridge, 0.55, 0.3};
    const QString plain = dir.filePath(".lisbon-untagged.mov"), tagged = dir.filePath("lisbon.mov");
    QFile::remove(plain);
    if (!encodeMovie(plain, sunset, QStringLiteral("Lisbon"))) return false;
    QFile source(plain);
    if (!source.open(QIODevice::ReadOnly)) return fail(plain + ": " + source.errorString());
    const QByteArray bytes = source.readAll();
    source.close();
    QString error;
    auto movie = media::readMovie(bytes, &error);
    if (!movie) return fail(plain + ": " + error);
    TagsVideoModifier modifier(movie->metadata);
    const QDateTime taken(QDate(2023, 9, 21), QTime(19, 32, 10), QTimeZone(3600));
    modifier.setDate(taken);
    GeoLocation place(38.7075, -9.1364);
    place.altitude = 12;
    place.verticalAccuracy = 5;
    modifier.setLocation(place);
    modifier.items << media::MetadataItem::quickTimeText("com.apple.quicktime.make", "Apple")
                   << media::MetadataItem::quickTimeText("com.apple.quicktime.model", "iPhone 15 Pro")
                   << media::MetadataItem::quickTimeText("com.apple.quicktime.software", "17.0.2");
    QFile::remove(tagged);
    const bool ok = media::writeMovie(plain, tagged, {modifier.items, true}, &error);
    QFile::remove(plain);
    return ok ? stampTime(tagged, taken) : fail(tagged + ": " + error);
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: make-demo DIR\n");
        return 2;
    }
    QDir dir(QString::fromLocal8Bit(argv[1]));
    dir.mkpath(".");
    av_log_set_level(AV_LOG_ERROR);  // the encoders' statistics are noise in a build log
    const auto at = [](double lat, double lon) { return std::optional<QPointF>(QPointF(lat, lon)); };
    const Camera canon{"Canon", "Canon EOS R6", "RF24-105mm F4 L IS USM", "Canon", "Firmware Version 1.8.1",
                       1.0 / 250, 8, 58, 200, 58, 16};
    const Camera nikon{"NIKON CORPORATION", "NIKON Z 6_2", "NIKKOR Z 24-70mm f/4 S", "Nikon", "Ver.01.50",
                       1.0 / 500, 5.6, 24, 100, 24, 16};
    const Camera iphone14{"Apple", "iPhone 14 Pro", "iPhone 14 Pro back triple camera 6.86mm f/1.78", "Apple",
                          "17.2.1", 1.0 / 1000, 1.78, 6.86, 80, 24, 24};
    const Camera iphone13{"Apple", "iPhone 13", "iPhone 13 back dual wide camera 5.1mm f/1.6", "Apple", "16.4",
                          1.0 / 320, 1.6, 5.1, 50, 26, 24};
    const Camera fuji{"FUJIFILM", "X-T4", "XF16-55mmF2.8 R LM WR", "FUJIFILM", "Digital Camera X-T4 Ver2.01",
                      1.0 / 125, 11, 16, 160, 24, 16};
    const Camera sony{"SONY", "ILCE-7M4", "FE 24-70mm F2.8 GM II", "Sony", "ILCE-7M4 v2.00", 1.0 / 60, 2.8, 35,
                      3200, 35, 16};
    const Camera om{"OM Digital Solutions", "OM-1", "M.Zuiko Digital ED 12-40mm F2.8 PRO", "OLYMPUS", "Version 1.5",
                    1.0 / 400, 6.3, 12, 200, 24, 16};
    const Demo demos[] = {
        {"rome.jpg", "Rome",
         {QColor(245, 150, 90), QColor(255, 214, 150), QColor(255, 240, 200), QColor(150, 90, 60), Land::arches, .78, .22},
         canon, "2023:05:14 19:42:05", "+02:00", at(41.8902, 12.4922), 32, 1, "Evening light on the Colosseum",
         "Rome, Colosseum, travel, history", "Giulia Conti", "Rome", "Italy"},
        {"reykjavik.jpg", "Reykjavík",
         {QColor(120, 160, 210), QColor(210, 225, 240), QColor(255, 250, 235), QColor(40, 70, 110), Land::harbour, .7, .25},
         nikon, "2022:11:02 10:05:44", "+00:00", at(64.1505, -21.9402), 4, 6, "Boats in the old harbour",
         "Iceland, harbour, boats, winter", "Jón Sigurðsson", "Reykjavík", "Iceland"},
        {"sydney.jpg", "Sydney",
         {QColor(250, 190, 140), QColor(255, 235, 200), QColor(255, 250, 220), QColor(30, 110, 150), Land::ocean, .25, .3},
         iphone14, "2024:01:26 07:40:12", "+11:00", at(-33.8568, 151.2153), 6, 3, nullptr, nullptr, nullptr, nullptr,
         nullptr},
        {"kyoto.heic", "Kyoto",
         {QColor(170, 200, 240), QColor(235, 240, 250), QColor(255, 255, 240), QColor(120, 160, 90), Land::blossom, .5, .15},
         iphone13, "2023:04:02 14:18:51", "+09:00", at(35.0116, 135.7681), 40, 1, "Cherry blossoms along the Kamo river",
         "Kyoto, sakura, spring", "Haruki Tanaka", "Kyoto", "Japan", "Seen from the Sanjō bridge"},
        {"torres-del-paine.jpg", "Torres del Paine",
         {QColor(110, 90, 160), QColor(250, 180, 170), QColor(255, 230, 200), QColor(60, 50, 80), Land::peaks, .82, .3},
         fuji, "2021:02:18 06:55:30", "-03:00", at(-50.9423, -72.9682), 120, 1, "First light on the towers",
         "Patagonia, Chile, mountains, sunrise", "Lucía Ortega", "Torres del Paine", "Chile"},
        {"new-york.jpg", "New York",
         {QColor(15, 20, 50), QColor(60, 50, 110), QColor(235, 235, 250), QColor(25, 25, 40), Land::city, .8, .15},
         sony, "2023:12:09 21:14:03", "-05:00", at(40.7580, -73.9855), 10, 1, "Times Square at night",
         "New York, city, night, lights", "Sam Rivera", "New York", "United States"},
        {"cape-town.jpg", "Cape Town",
         {QColor(80, 150, 220), QColor(190, 220, 245), QColor(255, 250, 225), QColor(70, 90, 70), Land::tableMountain, .15, .2},
         om, "2024:03:03 17:02:40", "+02:00", at(-33.9628, 18.4037), 1085, 1, nullptr, nullptr, "Thandi Mokoena", nullptr,
         nullptr},
        {"untagged.png", "Untitled",
         {QColor(235, 238, 245), QColor(210, 215, 230), QColor(255, 255, 255), QColor(0, 0, 0), Land::shapes, .5, .4},
         std::nullopt, nullptr, nullptr, std::nullopt, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr},
    };
    int failures = 0;
    for (const Demo& d : demos) failures += makePhoto(dir, d) ? 0 : 1;
    failures += makeMovie(dir) ? 0 : 1;
    return failures ? 1 : 0;
}
