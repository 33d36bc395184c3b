// A Windows program that shows a frame of the library in its window: SetDIBitsToDevice takes it as it is. Escape ends.
#include <q_Mur.h>
#include <vector>
#include <windows.h>

namespace {

constexpr int width = 480, height = 300;
std::vector<q_ulong> frame(width *height);

void drawFrame() {
    tagRECT all = {0, 0, width, height}; // the system's own RECT, a POINT likewise
    for (int y = 0; y < height; ++y) {
        tagRECT row = {0, y, width, y + 1};
        iFillRect(frame.data(), &row, width,
                  static_cast<q_ulong>(20 + y / 4) << 16 | static_cast<q_ulong>(60 + y / 3) << 8 | 150);
    }
    for (int i = 0; i < 9; ++i)
        Draw_Light_Safe(frame.data(), width, &all, 40 + 50 * i, 70 + i * i * 5 % 60, 44, 0xFFE8C0, 60);
    Draw_3DBall_Safe(frame.data(), width, &all, 240, 190, 70, 0xC03C30, 0);
    char text[] = "q_Mur", font[] = "Tahoma";
    iTextOut(frame.data(), &all, width, text, 0xFFFFFF, 20, 16, 40, font); // white is white either way round
}

LRESULT CALLBACK answer(HWND window, UINT message, WPARAM word, LPARAM value) {
    switch (message) {
    case WM_PAINT: {
        BITMAPINFO format = {};
        format.bmiHeader.biSize = sizeof format.bmiHeader;
        format.bmiHeader.biWidth = width;
        format.bmiHeader.biHeight = -height; // negative: the top row stands first
        format.bmiHeader.biPlanes = 1;
        format.bmiHeader.biBitCount = 32;
        format.bmiHeader.biCompression = BI_RGB;
        PAINTSTRUCT paint;
        const HDC device = BeginPaint(window, &paint);
        SetDIBitsToDevice(device, 0, 0, width, height, 0, 0, 0, height, frame.data(), &format, DIB_RGB_COLORS);
        EndPaint(window, &paint);
        return 0;
    }
    case WM_KEYDOWN:
        if (word == VK_ESCAPE)
            DestroyWindow(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, word, value);
    }
}

} // namespace

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);
    drawFrame();

    WNDCLASSA description = {};
    description.lpfnWndProc = answer;
    description.hInstance = GetModuleHandleA(nullptr);
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = "q_Mur frame";
    RegisterClassA(&description);

    // As large as leaves the frame its room inside.
    constexpr DWORD style = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;
    RECT outside = {0, 0, width, height};
    AdjustWindowRect(&outside, style, FALSE);
    const HWND window = CreateWindowA(description.lpszClassName, "q_Mur", style, CW_USEDEFAULT, CW_USEDEFAULT,
                                      outside.right - outside.left, outside.bottom - outside.top, nullptr, nullptr,
                                      description.hInstance, nullptr);
    if (!window)
        return 1;
    ShowWindow(window, SW_SHOW);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return static_cast<int>(message.wParam);
}
