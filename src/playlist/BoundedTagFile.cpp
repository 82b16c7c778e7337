#include "playlist/BoundedTagFile.h"

#include "playlist/Id3Scan.h"

#include <fileref.h>
#include <flacfile.h>
#include <id3v2frame.h>
#include <id3v2framefactory.h>
#include <mpegfile.h>
#include <tag.h>
#include <tfilestream.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace {

// TagLib's file stream with every read cut to kMaxTagReadBytes.
class BoundedFileStream : public TagLib::FileStream {
  public:
    explicit BoundedFileStream(const std::string& path)
        : TagLib::FileStream(path.c_str(), /*openReadOnly=*/true) {}
    TagLib::ByteVector readBlock(unsigned long length) override {
        return TagLib::FileStream::readBlock(std::min(length, kMaxTagReadBytes));
    }
};

// Thrown from inside TagLib's ID3v2 parse to stop it before it inflates a
// frame too large to trust; caught in ReadBoundedTagTitle. TagLib does not
// free what it had built of that tag (a few kilobytes), so the scan before
// the parse refuses such files first: this is the guard for a tag the scan
// does not find (one later in an MP3 stream).
struct TagRefused {};

// The ID3v2 frame header type is protected inside Frame; a subclass names it.
struct FrameHeaderName : TagLib::ID3v2::Frame {
    using Header = TagLib::ID3v2::Frame::Header;
};

// Sees every frame header before TagLib builds (and inflates) the frame.
class BoundedFrameFactory : public TagLib::ID3v2::FrameFactory {
  public:
    bool updateFrame(FrameHeaderName::Header* header) const override {
        if (header->compression() && header->frameSize() > kMaxCompressedFrameBytes)
            throw TagRefused{};
        return TagLib::ID3v2::FrameFactory::updateFrame(header);
    }
};

std::string LowerExtension(const std::string& path) {
    std::string e = std::filesystem::path(path).extension().string();
    for (char& c : e)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return e;
}

std::string TitleOf(TagLib::File* file) {
    if (!file || !file->isValid() || !file->tag())
        return {};
    return file->tag()->title().to8Bit(/*unicode=*/true);
}

}  // namespace

bool ReadBoundedTagTitle(const std::string& path, std::string* title) {
    if (FileHasOversizedCompressedFrame(path, kMaxCompressedFrameBytes,
                                        static_cast<std::uint32_t>(kMaxTagReadBytes)))
        return false;
    BoundedFileStream stream(path);
    if (!stream.isOpen())
        return false;
    static const BoundedFrameFactory factory;
    auto* frames = const_cast<BoundedFrameFactory*>(&factory);  // TagLib only reads it
    std::string text;
    try {
        // The files whose ID3v2 tags TagLib parses with a factory of ours;
        // the rest by content through FileRef.
        const std::string ext = LowerExtension(path);
        if (ext == ".mp3" || ext == ".mp2" || ext == ".mpga") {
            TagLib::MPEG::File file(&stream, frames, /*readProperties=*/false);
            text = TitleOf(&file);
        } else if (ext == ".flac") {
            TagLib::FLAC::File file(&stream, frames, /*readProperties=*/false);
            text = TitleOf(&file);
        } else {
            TagLib::FileRef file(&stream, /*readAudioProperties=*/false);
            text = TitleOf(file.file());
        }
    } catch (const TagRefused&) {
        return false;
    }
    if (text.empty())
        return false;
    *title = std::move(text);
    return true;
}
