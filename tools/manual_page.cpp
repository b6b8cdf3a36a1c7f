// Writes the manual page of the build's commands.
// usage: quillmar-manual FRAME TARGET

#include <fstream>
#include <iterator>

#include "commandline/ManualPage.h"

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    std::ifstream frame(argv[1], std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(frame), std::istreambuf_iterator<char>()};
    std::ofstream target(argv[2], std::ios::binary);
    target << quillmar::manualPage(text);
    target.close();
    return frame && target ? 0 : 1;
}
