#include "render/RenderJob.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <stdexcept>
#include <system_error>

#include "linux/render/protocol/RenderProtocol.h"
#include "render/PictureDrawing.h"
#include "render/PictureFile.h"
#include "render/PictureModule.h"
#include "render/Sandbox.h"

namespace quillmar {
namespace {

using render::AnswerKind;

/// The agent's memory for a canvas.
class MappedCanvas {
public:
    MappedCanvas(int descriptor, PixelSize size) : pixels_{{}, size} {
        constexpr int most = PixelBuffer::maximumSide;
        if (size.width < 1 || size.height < 1 || size.width > most || size.height > most)
            throw std::invalid_argument("a canvas of no such size");
        const std::size_t bytes = pixels_.rowBytes() * static_cast<std::size_t>(size.height);
        struct stat status{};
        if (::fstat(descriptor, &status) != 0 || status.st_size < static_cast<off_t>(bytes))
            throw std::invalid_argument("memory that is no canvas");
        void* data = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (data == MAP_FAILED) throw std::bad_alloc();
        pixels_.bytes = {static_cast<std::uint8_t*>(data), bytes};
    }
    MappedCanvas(const MappedCanvas&) = delete;
    MappedCanvas& operator=(const MappedCanvas&) = delete;
    ~MappedCanvas() { ::munmap(pixels_.bytes.data(), pixels_.bytes.size()); }
    const CanvasPixels& pixels() const { return pixels_; }

private:
    CanvasPixels pixels_;
};

using Descriptors = std::vector<FileDescriptor>;

int onlyOne(const Descriptors& descriptors) {
    if (descriptors.size() != 1) throw std::invalid_argument("a message without its descriptor");
    return descriptors.front().get();
}

int openChannel = -1;
void answer(AnswerKind kind, PixelSize size = {}) {
    render::send(openChannel, render::Answer{.kind = kind, .size = size});
}
[[noreturn]] void endOutOfMemory() {
    answer(AnswerKind::tooLarge);
    ::_exit(0);
}

void drawAsTold(PictureDrawing& drawing) {
    answer(AnswerKind::size, drawing.size());
    Descriptors memory;
    const auto told = render::receive<render::Drawing>(openChannel, memory);
    if (!told) throw std::invalid_argument("no drawing");
    const MappedCanvas canvas(onlyOne(memory), told->canvas);
    drawing.drawOn(canvas.pixels(), {told->canvas, told->background, told->destination, told->isTiled, {}});
}

void readPicture(render::Verb verb, const Descriptors& given) {
    const int file = onlyOne(given);
    const PictureFormat format = formatOf(file);
    std::optional<PictureModule> module;
    if (needsModule(format)) module.emplace(&endOutOfMemory);
    sandbox::lockIn(format == PictureFormat::vector ? sandbox::Files::fonts : sandbox::Files::none);
    PictureDrawing drawing(openPicture(file, format, module ? &*module : nullptr));
    verb == render::Verb::check ? drawing.check() : drawAsTold(drawing);
}

void carryOut(const render::Order& order, const Descriptors& given) {
    switch (order.verb) {
        case render::Verb::render:
        case render::Verb::check: return readPicture(order.verb, given);
        case render::Verb::load: {
            if (given.size() != 2) throw std::invalid_argument("a message without its descriptors");
            sandbox::lockIn(sandbox::Files::none);
            return loadPng(given[0].get(), MappedCanvas(given[1].get(), order.size).pixels());
        }
    }
    throw std::invalid_argument("no such verb");
}

}  // namespace

void runRenderJob(int channel) {
    openChannel = channel;
    try {
        sandbox::setBounds();
        Descriptors given;
        const auto order = render::receive<render::Order>(channel, given);
        if (!order) return;
        carryOut(*order, given);
        answer(AnswerKind::done);
    } catch (const PictureDecodingError& error) {
        const bool isTooLarge = error.reason() == PictureDecodingError::Reason::tooLarge;
        answer(isTooLarge ? AnswerKind::tooLarge : AnswerKind::unreadable);
    } catch (const std::bad_alloc&) {
        answer(AnswerKind::tooLarge);
    } catch (const std::exception&) {
        answer(AnswerKind::failed);
    }
}

}  // namespace quillmar
