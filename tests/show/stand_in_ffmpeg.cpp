/// \file
/// Takes ffmpeg's place in the tests of the Windows builds, which start a program that is called so: it writes down
/// what it was called with and how much it was fed, and lists as many packets as it was fed frames.

#include <cstdio>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace {

std::wstring valueOf(int count, wchar_t **arguments, const wchar_t *option) {
    for (int i = 1; i + 1 < count; ++i)
        if (std::wcscmp(arguments[i], option) == 0)
            return arguments[i + 1];
    return L"";
}

/// Without "file:" before it.
std::wstring pathOf(const std::wstring &argument) {
    return argument.substr(argument.find(L':') + 1);
}

} // namespace

int main() {
    int count = 0;
    wchar_t **const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const std::wstring input = valueOf(count, arguments, L"-i");
    if (input != L"pipe:0") {
        std::FILE *const file = _wfopen(pathOf(input).c_str(), L"rb");
        int width = 0;
        int height = 0;
        long long bytes = 0;
        if (!file || std::fscanf(file, "%dx%d %lld", &width, &height, &bytes) != 3) {
            std::fprintf(stderr, "[error] there is no such film\n");
            return 1;
        }
        std::fclose(file);
        std::printf("#tb 0: 1/10\n#dimensions 0: %dx%d\n", width, height);
        for (int i = 0; i < bytes / (4LL * width * height); ++i)
            std::printf("0, %d, %d, 1, 9, 0x0\n", i, i);
        return 0;
    }
    _setmode(_fileno(stdin), _O_BINARY);
    static char buffer[1 << 16];
    long long bytes = 0;
    while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, stdin))
        bytes += static_cast<long long>(got);
    if (GetEnvironmentVariableW(L"STAND_IN_COMPLAINS", nullptr, 0) > 0)
        std::fprintf(stderr, "[out#0 @ 0x1] [error] Error writing trailer\n");
    std::FILE *const file = _wfopen(pathOf(arguments[count - 1]).c_str(), L"wb");
    if (!file)
        return 1;
    std::fprintf(file, "%ls %lld\n", valueOf(count, arguments, L"-video_size").c_str(), bytes);
    return std::fclose(file);
}
