#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "Libav.h"

/// A recording, read back. Times are in seconds.
class MediaFile {
  public:
    struct Shot {
        double time;
        int centre; ///< Brightness in the middle of an area, 0 to 255, as coded,
        int edge;   ///< and of the left top pixel.
    };

    /// Looks at one place of each picture.
    MediaFile(const std::string& path, int x, int y) : fX(x), fY(y) {
        AVFormatContext* opened = nullptr;
        isReadable = avformat_open_input(&opened, path.c_str(), nullptr, nullptr) == 0 &&
                     avformat_find_stream_info(opened, nullptr) >= 0;
        if (isReadable)
            read(*opened);
        avformat_close_input(&opened);
    }

    bool isReadable = false;
    int width = 0;
    int height = 0;
    std::vector<Shot> shots;
    std::vector<double> sound; ///< The left channel, from -1 to 1.
    double soundStart = 0;
    bool isContinuous = true; ///< The sound's time stamps say so.

    double SoundEnd() const { return soundStart + static_cast<double>(sound.size()) / kRate; }
    bool IsGrowing() const {
        for (size_t i = 1; i < shots.size(); ++i)
            if (shots[i].time <= shots[i - 1].time)
                return false;
        return true;
    }
    /// Where the test tone clicks.
    std::vector<double> Clicks() const {
        std::vector<double> times;
        size_t last = 0;
        for (size_t i = 0; i < sound.size(); ++i) {
            if (std::abs(sound[i]) < 0.3)
                continue;
            if (times.empty() || i - last > kRate / 2)
                times.push_back(soundStart + static_cast<double>(i) / kRate);
            last = i;
        }
        return times;
    }

    static constexpr int kRate = 44100;

  private:
    void read(AVFormatContext& file) {
        std::vector<receiver::LibavPointer<AVCodecContext>> codecs;
        for (unsigned i = 0; i < file.nb_streams; ++i) {
            const AVCodecParameters* parameters = file.streams[i]->codecpar;
            codecs.emplace_back(avcodec_alloc_context3(avcodec_find_decoder(parameters->codec_id)));
            avcodec_parameters_to_context(codecs[i].get(), parameters);
            avcodec_open2(codecs[i].get(), nullptr, nullptr);
        }
        const receiver::LibavPointer<AVPacket> packet(av_packet_alloc());
        while (av_read_frame(&file, packet.get()) >= 0) {
            const auto stream = static_cast<size_t>(packet->stream_index);
            decode(*codecs[stream], packet.get(), file.streams[stream]->time_base);
            av_packet_unref(packet.get());
        }
        for (size_t i = 0; i < codecs.size(); ++i)
            decode(*codecs[i], nullptr, file.streams[i]->time_base);
    }

    void decode(AVCodecContext& codec, const AVPacket* packet, AVRational base) {
        const receiver::LibavPointer<AVFrame> frame(av_frame_alloc());
        avcodec_send_packet(&codec, packet);
        while (avcodec_receive_frame(&codec, frame.get()) >= 0) {
            const double time = static_cast<double>(frame->best_effort_timestamp) * av_q2d(base);
            codec.codec_type == AVMEDIA_TYPE_VIDEO ? see(*frame, time) : hear(*frame, time);
        }
    }

    /// Of YUV the luma, of BGR0 the green.
    void see(const AVFrame& frame, double time) {
        const bool isPlanar = frame.format == AV_PIX_FMT_YUV420P;
        const auto at = [&](int x, int y) {
            return frame.data[0][y * frame.linesize[0] + (isPlanar ? x : x * 4 + 1)];
        };
        width = frame.width;
        height = frame.height;
        shots.push_back({time, at(fX, fY), at(0, 0)});
    }

    void hear(const AVFrame& frame, double time) {
        if (sound.empty())
            soundStart = time;
        isContinuous = isContinuous && std::abs(SoundEnd() - time) < 0.002;
        const bool isFloat = frame.format == AV_SAMPLE_FMT_FLTP;
        for (int i = 0; i < frame.nb_samples; ++i)
            sound.push_back(isFloat ? static_cast<double>(reinterpret_cast<const float*>(frame.data[0])[i])
                                    : reinterpret_cast<const int16_t*>(frame.data[0])[i * 2] / 32768.0);
    }

    int fX;
    int fY;
};
