// SPDX-License-Identifier: GPL-3.0-or-later
// Movies through FFmpeg, built as a module of its own that the program loads on the first movie
// (see MovieReader.cpp): FFmpeg brings a hundred libraries that every start would load.
#include "FFmpegModule.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

#include <QtGlobal>
#include <cstring>
#include <memory>
#include <mutex>

namespace media {

namespace {

void quietFFmpeg() {
    static std::once_flag once;
    // Hostile files make FFmpeg talk a lot; what matters reaches the caller as an error.
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

QString avError(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

// A 32-bit field that FFmpeg is shown with another value than the file holds.
struct Patch {
    int64_t offset;
    uint8_t bytes[4];
};

// The atoms in [begin, end) as FFmpeg's QuickTime demuxer walks them: an atom that claims more
// than its parent holds is cut to the parent's end, not dropped.
QList<Atom> ffmpegChildren(ByteView b, qint64 begin, qint64 end) {
    QList<Atom> out;
    for (qint64 at = begin; at + 8 <= end;) {
        Atom a;
        a.offset = at;
        a.type = *b.be32(at + 4);
        quint64 size = *b.be32(at);
        if (size == 1) {
            const auto wide = b.be64(at + 8);
            if (!wide || at + 16 > end) break;
            size = *wide;
            a.header = 16;
        } else if (size == 0) {
            size = quint64(end - at);
        }
        if (size < quint64(a.header)) break;
        a.size = qint64(std::min<quint64>(size, quint64(end - at)));
        out.append(a);
        at += a.size;
    }
    return out;
}

// FFmpeg allocates and clears a table as long as the count in a 'keys' atom says before it
// reads a single entry, and frees it entry by entry: a hostile count costs it gigabytes and
// seconds. It is shown the count of the entries that are there instead. FFmpeg reads a 'keys'
// atom wherever it meets one (sample descriptions included), so every "keys" outside the media
// data is taken for one; where the text is something else, only FFmpeg's view of a tag that we
// read ourselves changes.
void clampKeyCounts(ByteView b, QList<Patch>* out) {
    static const QByteArray keys("keys");
    for (const Atom& top : ffmpegChildren(b, 0, b.size())) {
        if (top.type == fourcc("mdat")) continue;
        const QByteArrayView range(reinterpret_cast<const char*>(b.data() + top.offset), top.size);
        for (qsizetype hit = range.indexOf(keys, 4); hit >= 0; hit = range.indexOf(keys, hit + 1)) {
            const qint64 atom = top.offset + hit - 4;
            const quint32 size = *b.be32(atom);
            if (size != 0 && size < 8) continue;
            const qint64 atomEnd = size == 0 ? top.end() : std::min<qint64>(top.end(), atom + size);
            const auto count = b.be32(atom + 12);
            if (!count || atom + 16 > atomEnd) continue;
            // The entries that are there: a size of at least 8, within the atom.
            quint32 fits = 0;
            for (qint64 at = atom + 16; fits < *count;) {
                const auto entry = b.be32(at);
                if (!entry || *entry < 8 || qint64(*entry) > atomEnd - at) break;
                at += *entry;
                ++fits;
            }
            if (*count != fits)
                out->append(Patch{atom + 12, {uint8_t(fits >> 24), uint8_t(fits >> 16), uint8_t(fits >> 8), uint8_t(fits)}});
        }
    }
}

// FFmpeg reads from our bytes through this, so that a mapped file is read in place and a fuzzer
// can hand over memory.
struct MemoryInput {
    const uint8_t* data;
    int64_t size;
    int64_t pos = 0;
    QList<Patch> patches;

    static int read(void* opaque, uint8_t* buffer, int length) {
        auto* in = static_cast<MemoryInput*>(opaque);
        if (in->pos >= in->size) return AVERROR_EOF;
        const int n = int(std::min<int64_t>(length, in->size - in->pos));
        std::memcpy(buffer, in->data + in->pos, size_t(n));
        for (const Patch& p : in->patches)
            for (int i = 0; i < 4; ++i)
                if (p.offset + i >= in->pos && p.offset + i < in->pos + n) buffer[p.offset + i - in->pos] = p.bytes[i];
        in->pos += n;
        return n;
    }
    static int64_t seek(void* opaque, int64_t offset, int whence) {
        auto* in = static_cast<MemoryInput*>(opaque);
        whence &= ~AVSEEK_FORCE;
        if (whence == AVSEEK_SIZE) return in->size;
        int64_t target;
        switch (whence) {
        case SEEK_SET: target = offset; break;
        case SEEK_CUR: target = in->pos + offset; break;
        case SEEK_END: target = in->size + offset; break;
        default: return AVERROR(EINVAL);
        }
        if (target < 0 || target > in->size) return AVERROR(EINVAL);
        in->pos = target;
        return target;
    }
};

// An opened demuxer over memory, closed with everything it holds.
class Demuxer {
public:
    explicit Demuxer(const QByteArray& bytes) : input_{reinterpret_cast<const uint8_t*>(bytes.constData()), bytes.size(), 0, {}} {
        const ByteView view(bytes);
        clampKeyCounts(view, &input_.patches);
    }
    ~Demuxer() {
        if (format_) avformat_close_input(&format_);
        if (io_) {
            av_freep(&io_->buffer);
            avio_context_free(&io_);
        }
    }
    Demuxer(const Demuxer&) = delete;
    Demuxer& operator=(const Demuxer&) = delete;

    bool open(QString* error) {
        quietFFmpeg();
        auto fail = [&](const QString& why) {
            if (error) *error = why;
            return false;
        };
        if (input_.size <= 0) return fail(QStringLiteral("no data"));
        constexpr int bufferSize = 1 << 16;
        auto* buffer = static_cast<uint8_t*>(av_malloc(bufferSize));
        if (!buffer) return fail(QStringLiteral("out of memory"));
        io_ = avio_alloc_context(buffer, bufferSize, 0, &input_, &MemoryInput::read, nullptr, &MemoryInput::seek);
        if (!io_) {
            av_free(buffer);
            return fail(QStringLiteral("out of memory"));
        }
        format_ = avformat_alloc_context();
        if (!format_) return fail(QStringLiteral("out of memory"));
        format_->pb = io_;
        format_->flags |= AVFMT_FLAG_CUSTOM_IO;
        AVDictionary* options = nullptr;
        // Only movie demuxers: the rest of FFmpeg's formats are no movies for this program.
        av_dict_set(&options, "format_whitelist", "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi", 0);
        // Edit lists only shift presentation times, which nothing here reads; FFmpeg's
        // rebuilding of the sample index for them takes seconds on a hostile sample table.
        av_dict_set(&options, "ignore_editlist", "1", 0);
        const int rc = avformat_open_input(&format_, nullptr, nullptr, &options);
        av_dict_free(&options);
        if (rc < 0) {
            format_ = nullptr;  // freed by the failed open
            return fail(QStringLiteral("not a movie that can be read (%1)").arg(avError(rc)));
        }
        // QuickTime and MP4 headers say everything without decoding; other containers need a
        // short look at the packets.
        if (!QByteArray(format_->iformat->name).startsWith("mov")) {
            format_->probesize = 1 << 20;
            format_->max_analyze_duration = 2 * AV_TIME_BASE;
            avformat_find_stream_info(format_, nullptr);
        }
        return true;
    }

    AVFormatContext* format() const { return format_; }

private:
    MemoryInput input_;
    AVIOContext* io_ = nullptr;
    AVFormatContext* format_ = nullptr;
};

QString tagText(uint32_t tag) {
    // FFmpeg keeps a four-character code with its first character in the low byte.
    QByteArray b;
    for (int i = 0; i < 4; ++i) b.append(char(tag >> (8 * i) & 0xFF));
    const qsizetype nul = b.indexOf('\0');
    if (nul >= 0) b.truncate(nul);
    return QString::fromLatin1(b).trimmed();
}

QString mediaTypeText(AVMediaType type) {
    switch (type) {
    case AVMEDIA_TYPE_VIDEO: return QStringLiteral("vide");
    case AVMEDIA_TYPE_AUDIO: return QStringLiteral("soun");
    case AVMEDIA_TYPE_SUBTITLE: return QStringLiteral("sbtl");
    case AVMEDIA_TYPE_DATA: return QStringLiteral("meta");
    default: return {};
    }
}

std::optional<double> rate(AVRational r) {
    if (r.num <= 0 || r.den <= 0) return std::nullopt;
    return av_q2d(r);
}

QTransform displayTransform(const AVStream* stream) {
    size_t size = 0;
    const uint8_t* data = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!data || size < 9 * sizeof(int32_t)) return {};
    int32_t m[9];
    std::memcpy(m, data, sizeof m);
    // a, b, c, d and the translation are 16.16 fixed point, in the order the file stores them.
    auto fixed = [](int32_t v) { return double(v) / 65536.0; };
    return QTransform(fixed(m[0]), fixed(m[1]), fixed(m[3]), fixed(m[4]), fixed(m[6]), fixed(m[7]));
}

std::optional<ByteView> moovOf(const QByteArray& bytes, Atom* moov) {
    const ByteView view(bytes);
    for (const Atom& a : children(view, 0, view.size()).atoms)
        if (a.type == fourcc("moov")) {
            *moov = a;
            return view;
        }
    return std::nullopt;
}

}  // namespace

namespace {

std::optional<MovieInfo> readMovieWithFFmpeg(const QByteArray& bytes, QString* error) {
    Demuxer demuxer(bytes);
    if (!demuxer.open(error)) return std::nullopt;
    const AVFormatContext* f = demuxer.format();
    MovieInfo info;
    info.containerName = QString::fromLatin1(f->iformat->name);
    if (f->duration != AV_NOPTS_VALUE && f->duration >= 0) info.duration = double(f->duration) / AV_TIME_BASE;
    for (unsigned i = 0; i < f->nb_streams; ++i) {
        const AVStream* s = f->streams[i];
        const AVCodecParameters* p = s->codecpar;
        Track t;
        t.trackID = s->id;
        t.mediaType = mediaTypeText(p->codec_type);
        QString subtype = tagText(p->codec_tag);
        if (subtype.isEmpty()) subtype = QString::fromLatin1(avcodec_get_name(p->codec_id));
        t.formatDescriptions.append({t.mediaType, subtype});
        if (p->codec_type == AVMEDIA_TYPE_VIDEO) {
            if (p->width > 0 && p->height > 0) t.naturalSize = QSizeF(p->width, p->height);
            t.preferredTransform = displayTransform(s);
            t.nominalFrameRate = rate(s->avg_frame_rate);
            if (!t.nominalFrameRate) t.nominalFrameRate = rate(s->r_frame_rate);
        }
        info.tracks.append(t);
    }
    Atom moov;
    if (auto view = moovOf(bytes, &moov)) info.metadata = readMetadataItems(*view, moov);
    return info;
}

QImage firstFrameWithFFmpeg(const QByteArray& bytes, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = why;
        return QImage();
    };
    Demuxer demuxer(bytes);
    if (!demuxer.open(error)) return {};
    AVFormatContext* f = demuxer.format();
    const AVCodec* codec = nullptr;
    const int index = av_find_best_stream(f, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (index < 0 || !codec) return fail(QStringLiteral("no video track that can be decoded"));
    const AVStream* stream = f->streams[index];

    using CodecPtr = std::unique_ptr<AVCodecContext, void (*)(AVCodecContext*)>;
    CodecPtr ctx(avcodec_alloc_context3(codec), [](AVCodecContext* c) { avcodec_free_context(&c); });
    if (!ctx || avcodec_parameters_to_context(ctx.get(), stream->codecpar) < 0 || avcodec_open2(ctx.get(), codec, nullptr) < 0)
        return fail(QStringLiteral("the video codec can't be opened"));
    std::unique_ptr<AVPacket, void (*)(AVPacket*)> packet(av_packet_alloc(), [](AVPacket* p) { av_packet_free(&p); });
    std::unique_ptr<AVFrame, void (*)(AVFrame*)> frame(av_frame_alloc(), [](AVFrame* fr) { av_frame_free(&fr); });
    if (!packet || !frame) return fail(QStringLiteral("out of memory"));

    bool got = false;
    bool draining = false;
    // A bounded number of packets: a movie whose first picture doesn't come soon has none for us.
    for (int reads = 0; reads < 2000;) {
        const int received = avcodec_receive_frame(ctx.get(), frame.get());
        if (received == 0) {
            got = true;
            break;
        }
        if (received != AVERROR(EAGAIN) || draining) break;
        const int rc = av_read_frame(f, packet.get());
        ++reads;
        if (rc < 0) {
            draining = true;
            avcodec_send_packet(ctx.get(), nullptr);
            continue;
        }
        if (packet->stream_index == index) avcodec_send_packet(ctx.get(), packet.get());
        av_packet_unref(packet.get());
    }
    if (!got || frame->width <= 0 || frame->height <= 0) return fail(QStringLiteral("no picture could be decoded"));

    // swscale writes whole vectors, so it gets a buffer of its own alignment, copied row by row.
    std::unique_ptr<AVFrame, void (*)(AVFrame*)> rgb(av_frame_alloc(), [](AVFrame* fr) { av_frame_free(&fr); });
    if (!rgb) return fail(QStringLiteral("out of memory"));
    rgb->format = AV_PIX_FMT_BGRA;
    rgb->width = frame->width;
    rgb->height = frame->height;
    if (av_frame_get_buffer(rgb.get(), 64) < 0) return fail(QStringLiteral("out of memory"));
    SwsContext* sws = sws_getContext(frame->width, frame->height, AVPixelFormat(frame->format), frame->width,
                                     frame->height, AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr, nullptr);
    if (!sws) return fail(QStringLiteral("the picture's pixel format can't be converted"));
    sws_scale(sws, frame->data, frame->linesize, 0, frame->height, rgb->data, rgb->linesize);
    sws_freeContext(sws);
    QImage image(frame->width, frame->height, QImage::Format_RGB32);
    if (image.isNull()) return fail(QStringLiteral("out of memory"));
    for (int y = 0; y < frame->height; ++y)
        std::memcpy(image.scanLine(y), rgb->data[0] + qsizetype(y) * rgb->linesize[0], size_t(frame->width) * 4);

    const QTransform t = displayTransform(stream);
    // Only the turning and mirroring: the translation places the picture, it doesn't change it.
    const QTransform turn(t.m11(), t.m12(), t.m21(), t.m22(), 0, 0);
    if (turn.isIdentity() || !turn.isInvertible()) return image;
    return image.transformed(turn);
}

QString versions() {
    return QStringLiteral("FFmpeg %1 (libavformat %2.%3.%4)")
        .arg(QString::fromLatin1(av_version_info()))
        .arg(AV_VERSION_MAJOR(avformat_version()))
        .arg(AV_VERSION_MINOR(avformat_version()))
        .arg(AV_VERSION_MICRO(avformat_version()));
}

// As FFmpeg was configured: Debian's build is under the GPL.
QString licence() { return QString::fromLatin1(avformat_license()); }

}  // namespace

}  // namespace media

extern "C" Q_DECL_EXPORT const media::FFmpegModule* tessorin_ffmpeg_module() {
    static const media::FFmpegModule module{media::readMovieWithFFmpeg, media::firstFrameWithFFmpeg, media::versions,
                                            media::licence};
    return &module;
}
