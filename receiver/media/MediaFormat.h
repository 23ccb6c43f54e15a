#pragma once

namespace receiver {

/// What a recording is made of.
struct MediaFormat {
    enum class Container {
        kMatroska, ///< H.264 and AAC, as in kMP4.
        kMP4,      ///< In fragments, so that it can be played however it ends.
        kNut,      ///< Uncompressed pictures and sound with time stamps.
        kRaw,      ///< Uncompressed pictures or sound, and nothing else.
    };
    enum class Pixels { kBGR0, kYUV420P }; ///< Of uncompressed pictures.

    Container container = Container::kMatroska;
    bool hasPictures = true;
    bool hasSound = true;
    Pixels pixels = Pixels::kBGR0;
    double rate = 60; ///< Pictures a second, at most.
    int crf = 20;     ///< Of H.264: 0 to 51, better when lower.

    bool IsCompressed() const { return container == Container::kMatroska || container == Container::kMP4; }
};

} // namespace receiver
