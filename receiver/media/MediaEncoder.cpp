#include "MediaEncoder.h"

namespace receiver {

LibavPointer<AVCodecContext> MediaEncoder::NewCodec(const char* name) {
    const AVCodec* codec = avcodec_find_encoder_by_name(name);
    return LibavPointer<AVCodecContext>(codec ? avcodec_alloc_context3(codec) : nullptr);
}

bool MediaEncoder::Open(AVFormatContext& muxer, LibavPointer<AVCodecContext> codec, AVDictionary** options,
                        std::string& reason) {
    if (!codec) {
        reason = "the FFmpeg libraries of this machine lack libx264 or AAC; install them with both";
        return false;
    }
    if (muxer.oformat->flags & AVFMT_GLOBALHEADER)
        codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    const std::string name = codec->codec->name; // A codec that can't be opened loses it.
    fPacket.reset(av_packet_alloc());
    int error = fPacket ? avcodec_open2(codec.get(), nullptr, options) : AVERROR(ENOMEM);
    AVStream* stream = error < 0 ? nullptr : avformat_new_stream(&muxer, nullptr);
    if (stream) {
        stream->time_base = codec->time_base;
        stream->avg_frame_rate = codec->framerate;
        error = avcodec_parameters_from_context(stream->codecpar, codec.get());
    } else if (error >= 0) {
        error = AVERROR(ENOMEM);
    }
    if (error < 0) {
        reason = name + " can't encode this: " + LibavError(error);
        return false;
    }
    fMuxer = &muxer;
    fCodec = std::move(codec);
    fStream = stream;
    return true;
}

int MediaEncoder::Send(const AVFrame* frame) {
    const int error = avcodec_send_frame(fCodec.get(), frame);
    return error < 0 ? error : receive();
}

int MediaEncoder::receive() {
    while (true) {
        int error = avcodec_receive_packet(fCodec.get(), fPacket.get());
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF)
            return 0;
        if (error < 0)
            return error;
        av_packet_rescale_ts(fPacket.get(), fCodec->time_base, fStream->time_base);
        fPacket->stream_index = fStream->index;
        error = av_interleaved_write_frame(fMuxer, fPacket.get());
        if (error < 0)
            return error;
    }
}

} // namespace receiver
