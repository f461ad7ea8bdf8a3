#include "Layout.h"
#include "resource.h"

#include <array>

namespace
{
/// How much of the dialog's growth each edge of a control follows, in per cent.
struct Anchors
{
    int id;
    int left;
    int top;
    int right;
    int bottom;
};

constexpr std::array<Anchors, 18> controls{{{IDC_ENDPOINT, 0, 0, 100, 0},
                                            {IDC_OPEN_SESSION, 100, 0, 100, 0},
                                            {IDC_USER, 0, 0, 50, 0},
                                            {IDC_PASSWORD_LABEL, 50, 0, 50, 0},
                                            {IDC_PASSWORD, 50, 0, 100, 0},
                                            {IDC_CLOSE_SESSION, 100, 0, 100, 0},
                                            {IDC_ENDPOINT_HINT, 0, 0, 100, 0},
                                            {IDC_SEPARATOR, 0, 0, 100, 0},
                                            {IDC_ENTITY_ID, 0, 0, 100, 0},
                                            {IDC_SHOW_TICKETS, 100, 0, 100, 0},
                                            {IDC_TICKETS, 0, 0, 100, 100},
                                            {IDC_NEW_TICKET, 0, 100, 0, 100},
                                            {IDC_ADD_NOTE, 0, 100, 0, 100},
                                            {IDC_ATTACH_FILE, 0, 100, 0, 100},
                                            {IDC_FILE_HINT, 0, 100, 100, 100},
                                            {IDC_PROGRESS, 100, 100, 100, 100},
                                            {IDC_LOG_LABEL, 0, 100, 0, 100},
                                            {IDC_LOG, 0, 100, 100, 100}}};

RECT placeIn(HWND dialog, int id)
{
    RECT place{};
    GetWindowRect(GetDlgItem(dialog, id), &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

SIZE outerSize(HWND window)
{
    RECT outline{};
    GetWindowRect(window, &outline);
    return {outline.right - outline.left, outline.bottom - outline.top};
}

SIZE clientSize(HWND window)
{
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}
} // namespace

Layout::Layout(HWND dialog)
    : m_dialog(dialog), m_dpi(GetDpiForWindow(dialog)), m_dialogSize(outerSize(dialog)),
      m_clientSize(clientSize(dialog)),
      m_logHeight(placeIn(dialog, IDC_LOG).bottom - placeIn(dialog, IDC_NEW_TICKET).bottom)
{
    for (const auto& control : controls) {
        m_places.push_back(placeIn(dialog, control.id));
    }
}

int Layout::scaled(int value) const
{
    return MulDiv(value, static_cast<int>(GetDpiForWindow(m_dialog)), static_cast<int>(m_dpi));
}

void Layout::arrange(bool hasLog) const
{
    SendDlgItemMessageW(m_dialog, IDC_STATUS_BAR, WM_SIZE, 0, 0); // it places itself
    const SIZE size = clientSize(m_dialog);
    const int wider = size.cx - scaled(m_clientSize.cx);
    const int higher = size.cy - scaled(m_clientSize.cy);
    HDWP placing = BeginDeferWindowPos(static_cast<int>(controls.size()));
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const Anchors& anchors = controls[i];
        const RECT& place = m_places[i];
        const bool isOfLog = anchors.id == IDC_LOG || anchors.id == IDC_LOG_LABEL;
        const int below = higher + (hasLog || isOfLog ? 0 : scaled(m_logHeight));
        const int left = scaled(place.left) + wider * anchors.left / 100;
        const int top = scaled(place.top) + below * anchors.top / 100;
        const int right = scaled(place.right) + wider * anchors.right / 100;
        const int bottom = scaled(place.bottom) + below * anchors.bottom / 100;
        placing = DeferWindowPos(placing, GetDlgItem(m_dialog, anchors.id), nullptr, left, top, right - left,
                                 bottom - top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
    EndDeferWindowPos(placing);
}
