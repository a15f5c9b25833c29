// SPDX-License-Identifier: GPL-3.0-or-later
// The demo album's movie, encoded by FFmpeg from drawn frames and a synthesised chord.
#include "demo.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cmath>

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
