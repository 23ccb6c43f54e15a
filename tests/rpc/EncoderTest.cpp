#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnRPC_Encoder.h"

namespace {

/// Notes what an encoder tells its exporter.
class NotingExporter : public host::PictureExporter {
  public:
    struct Notes {
        std::vector<int> qualities;
        int inputs = 0;
        int outputs = 0;
        int exports = 0;
        int result = 0;
    };
    explicit NotingExporter(Notes& notes) : fNotes(notes) {}
    void SetInputPixels(const void*) override { ++fNotes.inputs; }
    int SetCompressionQuality(int quality) override { return fNotes.qualities.push_back(quality), 0; }
    int SetOutput(host::PictureBlock&) override { return ++fNotes.outputs, 0; }
    int Export() override { return ++fNotes.exports, fNotes.result; }

  private:
    Notes& fNotes;
};

class NotingHost : public FakeHost {
  public:
    std::unique_ptr<host::PictureExporter> NewPictureExporter(int, int, int) override {
        return std::make_unique<NotingExporter>(notes);
    }
    NotingExporter::Notes notes;
};

TEST(Encoder, ReadsQualityWords) {
    for (const char* word : {"low", "LOW", "Low"})
        EXPECT_EQ(vnRPC_Encoder::QualityFromString(word), vnRPC_Encoder::kQualityLow);
    for (const char* word : {"Normal", "", "lower", "best"})
        EXPECT_EQ(vnRPC_Encoder::QualityFromString(word), vnRPC_Encoder::kQualityNormal);
    EXPECT_EQ(vnRPC_Encoder::QualityFromString("HIGH"), vnRPC_Encoder::kQualityHigh);
}

TEST(Encoder, TellsTheExporterOnlyWhatChanged) {
    NotingHost machine;
    host::HostScope scope(machine);
    const std::unique_ptr<vnRPC_Encoder> encoder(vnRPC_Encoder::Factory(8, 8, 32));
    vnEncoderBuffer* first = encoder->NewBuffer();
    vnEncoderBuffer* second = encoder->NewBuffer();
    const uint8_t pixels[2][8 * 8 * 4] = {};

    EXPECT_EQ(encoder->EncodeJPEG(*first, pixels[0], 0, 0), 0);
    EXPECT_EQ(machine.notes.qualities, (std::vector<int>{512}))
        << "the first picture sets a quality in any case";
    EXPECT_EQ(encoder->EncodeJPEG(*first, pixels[0], 0, vnRPC_Encoder::kQualityHigh), 0);
    EXPECT_EQ(encoder->EncodeJPEG(*first, pixels[0], 0, vnRPC_Encoder::kQualityHigh), 0);
    EXPECT_EQ(encoder->EncodeJPEG(*second, pixels[1], 0, vnRPC_Encoder::kQualityLow), 0);
    EXPECT_EQ(encoder->EncodeJPEG(*first, pixels[1], 0, 12345), 0);
    EXPECT_EQ(machine.notes.qualities, (std::vector<int>{512, 768, 256, 512}));
    EXPECT_EQ(machine.notes.outputs, 3);
    EXPECT_EQ(machine.notes.inputs, 2);
    EXPECT_EQ(machine.notes.exports, 5);

    machine.notes.result = -5;
    EXPECT_EQ(encoder->EncodeJPEG(*first, pixels[1], 0, 12345), -1);
    first->Release();
    second->Release();
}

TEST(Encoder, AFailedSetUpFailsEachPicture) {
    FakeHost machine;
    machine.hasExporter = false;
    host::HostScope scope(machine);
    const std::unique_ptr<vnRPC_Encoder> encoder(vnRPC_Encoder::Factory(8, 8, 32));
    vnEncoderBuffer* buffer = encoder->NewBuffer();
    const uint8_t pixels[8 * 8 * 4] = {};
    EXPECT_EQ(encoder->EncodeJPEG(*buffer, pixels, sizeof pixels, vnRPC_Encoder::kQualityLow), -1);
    EXPECT_EQ(buffer->Size(), 0);
    buffer->Release();
}

} // namespace
