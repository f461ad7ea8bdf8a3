#include "Layout.h"
#include "resource.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace
{
constexpr int stretched = -1;
constexpr int natural = 0;

/// A control in a row: its width is its text's, takes what the others leave, or is given.
struct Cell
{
    int id;
    int width = natural;
};

/// Places controls row by row; only controls that move or grow are painted.
class Rows
{
public:
    Rows(HWND window, const Layout& layout, RECT area)
        : m_window(window), m_layout(layout), m_area(area), m_placing(BeginDeferWindowPos(32)), m_font(window)
    {}

    ~Rows() { EndDeferWindowPos(m_placing); }
    Rows(const Rows&) = delete;
    Rows(Rows&&) = delete;
    Rows& operator=(const Rows&) = delete;
    Rows& operator=(Rows&&) = delete;

    int rowHeight() const { return m_layout.scaled(25); }
    int heightLeft() const { return m_area.bottom - m_area.top; }
    int widthOf(int id) const;
    void row(const std::vector<Cell>& cells) { row(cells, rowHeight()); }
    void row(const std::vector<Cell>& cells, int height);
    void skip(int height) { m_area.top += height; }

private:
    /// The window's font, in which texts are measured.
    struct FontContext
    {
        explicit FontContext(HWND owner)
            : window(owner), context(GetDC(owner)),
              previous(SelectObject(context, reinterpret_cast<HFONT>(
                                                 SendDlgItemMessageW(owner, IDC_ENDPOINT, WM_GETFONT, 0, 0))))
        {}
        ~FontContext()
        {
            SelectObject(context, previous);
            ReleaseDC(window, context);
        }
        FontContext(const FontContext&) = delete;
        FontContext(FontContext&&) = delete;
        FontContext& operator=(const FontContext&) = delete;
        FontContext& operator=(FontContext&&) = delete;

        HWND window;
        HDC context;
        HGDIOBJ previous;
    };

    HWND m_window;
    const Layout& m_layout;
    RECT m_area;
    HDWP m_placing;
    FontContext m_font;
};

/// As wide as the text, and on buttons as much more as looks right.
int Rows::widthOf(int id) const
{
    HWND const control = GetDlgItem(m_window, id);
    std::array<wchar_t, 200> text{};
    RECT size{};
    GetWindowTextW(control, text.data(), static_cast<int>(text.size()));
    DrawTextW(m_font.context, text.data(), -1, &size, DT_CALCRECT | DT_SINGLELINE);
    const auto dialogCode = SendMessageW(control, WM_GETDLGCODE, 0, 0);
    if ((dialogCode & DLGC_BUTTON) == 0) {
        return size.right + m_layout.scaled(2);
    }
    return (dialogCode & DLGC_RADIOBUTTON) != 0
               ? size.right + m_layout.scaled(22)
               : std::max<int>(size.right + m_layout.scaled(24), m_layout.scaled(88));
}

void Rows::row(const std::vector<Cell>& cells, int height)
{
    const int gap = m_layout.scaled(8);
    std::vector<int> widths;
    int left = m_area.right - m_area.left - gap * static_cast<int>(cells.size() - 1);
    for (const auto& cell : cells) {
        widths.push_back(cell.width == natural ? widthOf(cell.id) : std::max(cell.width, 0));
        left -= widths.back();
    }
    int x = m_area.left;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const int width = cells[i].width == stretched ? std::max(left, 0) : widths[i];
        if (HWND const control = GetDlgItem(m_window, cells[i].id)) {
            m_placing = DeferWindowPos(m_placing, control, nullptr, x, m_area.top, width, height,
                                       SWP_NOZORDER | SWP_NOACTIVATE);
        }
        x += width + gap;
    }
    m_area.top += height + gap;
}

/// The progress bar is a child of the status bar, in its last part.
int arrangeStatusBar(HWND window, const Layout& layout)
{
    HWND const bar = GetDlgItem(window, IDC_STATUS_BAR);
    SendMessageW(bar, WM_SIZE, 0, 0);
    RECT outline{};
    GetClientRect(bar, &outline);
    const std::array<int, 2> ends{std::max<int>(outline.right - layout.scaled(190), 0), -1};
    SendMessageW(bar, SB_SETPARTS, ends.size(), reinterpret_cast<LPARAM>(ends.data()));
    RECT part{};
    SendMessageW(bar, SB_GETRECT, 1, reinterpret_cast<LPARAM>(&part));
    const int inset = layout.scaled(4);
    SetWindowPos(GetDlgItem(bar, IDC_PROGRESS), nullptr, part.left + inset, part.top + inset,
                 layout.scaled(160), part.bottom - part.top - 2 * inset, SWP_NOZORDER | SWP_NOACTIVATE);
    return outline.bottom;
}
} // namespace

Layout::~Layout()
{
    DeleteObject(m_font);
}

void Layout::setDpi(HWND window, UINT dpi)
{
    m_dpi = dpi;
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi);
    HFONT const previous = std::exchange(m_font, CreateFontIndirectW(&metrics.lfMessageFont));
    EnumChildWindows(
        window,
        [](HWND control, LPARAM font) {
            SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(font), TRUE);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(m_font));
    if (previous != nullptr) {
        DeleteObject(previous);
    }
}

void Layout::arrange(HWND window) const
{
    RECT area{};
    GetClientRect(window, &area);
    area.bottom -= arrangeStatusBar(window, *this);
    InflateRect(&area, -scaled(12), -scaled(12));

    Rows rows(window, *this, area);
    const int gap = scaled(8);
    const int labels = std::max(rows.widthOf(IDC_ENDPOINT_LABEL), rows.widthOf(IDC_USER_LABEL));
    const int buttons = std::max(
        {rows.widthOf(IDC_OPEN_SESSION), rows.widthOf(IDC_CLOSE_SESSION), rows.widthOf(IDC_SHOW_TICKETS)});
    rows.row({{IDC_ENDPOINT_LABEL, labels}, {IDC_ENDPOINT, stretched}, {IDC_OPEN_SESSION, buttons}});
    const int user =
        (area.right - area.left - labels - buttons - rows.widthOf(IDC_PASSWORD_LABEL) - 4 * gap) / 2;
    rows.row({{IDC_USER_LABEL, labels},
              {IDC_USER, user},
              {IDC_PASSWORD_LABEL},
              {IDC_PASSWORD, stretched},
              {IDC_CLOSE_SESSION, buttons}});
    rows.skip(scaled(4));
    rows.row({{IDC_SEPARATOR, stretched}}, 2);
    rows.skip(scaled(2));
    rows.row({{IDC_TICKETS_LABEL, labels},
              {IDC_CLIENT},
              {IDC_ASSET},
              {IDC_ENTITY_ID_LABEL},
              {IDC_ENTITY_ID, stretched},
              {IDC_SHOW_TICKETS, buttons}});

    // The list and the log share the height that the two rows between them leave.
    const int label = scaled(17);
    const int shared = std::max(rows.heightLeft() - rows.rowHeight() - label - 3 * gap, 0);
    const int list = shared * 3 / 5;
    rows.row({{IDC_TICKETS, stretched}}, list);
    rows.row({{IDC_NEW_TICKET}, {IDC_ADD_NOTE}, {IDC_ATTACH_FILE}, {IDC_DROP_HINT, stretched}});
    rows.row({{IDC_LOG_LABEL, stretched}}, label);
    rows.row({{IDC_LOG, stretched}}, shared - list);
}
