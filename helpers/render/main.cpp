// Reads one picture for the program that started it, and ends.
#include <unistd.h>

#include "linux/render/protocol/RenderProtocol.h"
#include "render/RenderJob.h"

int main() {
    quillmar::runRenderJob(quillmar::render::channelDescriptor);
    ::_exit(0);  // nothing needs to be put in order for a process that is done
}
