#include "platform/process/clsTopWindows.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "common/text.h"

namespace sandrel {
namespace {

constexpr std::size_t LongestTitle = 255;  // UTF-16 units
constexpr std::uint32_t IconicState = 3;   // of WM_STATE
constexpr std::uint32_t FromUser = 2;      // the source of a request that a user made

enum Atom : std::size_t {
  Utf8String,
  WmState,
  NetWmName,
  NetWmState,
  NetWmStateHidden,
  NetClientList,
  NetClientListStacking,
  NetActiveWindow,
  NetSupportingWmCheck,
  AtomCount
};
constexpr std::array<std::string_view, AtomCount> AtomNames = {"UTF8_STRING",
                                                               "WM_STATE",
                                                               "_NET_WM_NAME",
                                                               "_NET_WM_STATE",
                                                               "_NET_WM_STATE_HIDDEN",
                                                               "_NET_CLIENT_LIST",
                                                               "_NET_CLIENT_LIST_STACKING",
                                                               "_NET_ACTIVE_WINDOW",
                                                               "_NET_SUPPORTING_WM_CHECK"};

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;
using PropertyPtr = ReplyPtr<xcb_get_property_reply_t>;

bool IsThere(const PropertyPtr& property) {
  return property != nullptr && property->type != XCB_ATOM_NONE;
}

std::string_view BytesOf(const PropertyPtr& property) {
  if (!IsThere(property) || property->format != 8) return {};
  const auto* bytes = static_cast<const char*>(xcb_get_property_value(property.get()));
  return {bytes, static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

std::vector<std::uint32_t> NumbersOf(const PropertyPtr& property) {
  if (!IsThere(property) || property->format != 32) return {};
  const auto* numbers = static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
  const auto count = static_cast<std::size_t>(xcb_get_property_value_length(property.get())) / 4;
  return {numbers, numbers + count};
}

}  // namespace

struct clsTopWindows::Display {
  Display(xcb_connection_t* connection, int screenNumber) : Connection(connection) {
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screenNumber > 0 && screen.rem > 1; --screenNumber) xcb_screen_next(&screen);
    Root = screen.data->root;
    std::array<xcb_intern_atom_cookie_t, AtomCount> cookies{};
    for (std::size_t i = 0; i < AtomCount; ++i) {
      cookies[i] = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(AtomNames[i].size()),
                                   AtomNames[i].data());
    }
    for (std::size_t i = 0; i < AtomCount; ++i) {
      const ReplyPtr<xcb_intern_atom_reply_t> reply(
          xcb_intern_atom_reply(connection, cookies[i], nullptr));
      Atoms[i] = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
  }
  ~Display() { xcb_disconnect(Connection); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  // A property is asked for first and taken later, so that several cost one trip to the server.
  xcb_get_property_cookie_t Ask(xcb_window_t window, xcb_atom_t name,
                                std::uint32_t words = 1024) const {
    return xcb_get_property(Connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
  }
  PropertyPtr Take(xcb_get_property_cookie_t cookie) const {
    return PropertyPtr(xcb_get_property_reply(Connection, cookie, nullptr));
  }

  // Waits until the server has done a request. That a window went away meanwhile is no error.
  void Finish(xcb_void_cookie_t cookie) const {
    const ReplyPtr<xcb_generic_error_t> ignored(xcb_request_check(Connection, cookie));
  }

  xcb_connection_t* Connection;
  xcb_window_t Root = XCB_WINDOW_NONE;
  std::array<xcb_atom_t, AtomCount> Atoms{};
};

clsTopWindows::clsTopWindows() {
  int screenNumber = 0;
  xcb_connection_t* const connection = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return;
  }
  m_display = std::make_unique<Display>(connection, screenNumber);
}

clsTopWindows::~clsTopWindows() = default;

std::vector<WindowHandle> clsTopWindows::Windows() const {
  const Display& x = *m_display;
  constexpr std::uint32_t Words = 1u << 16;
  const auto stacking = x.Ask(x.Root, x.Atoms[NetClientListStacking], Words);
  const auto byAge = x.Ask(x.Root, x.Atoms[NetClientList], Words);
  const auto tree = xcb_query_tree(x.Connection, x.Root);

  std::vector<WindowHandle> result = NumbersOf(x.Take(stacking));
  std::reverse(result.begin(), result.end());  // the lowest window stands first
  const std::vector<WindowHandle> clients = NumbersOf(x.Take(byAge));
  if (result.empty()) result = clients;

  const ReplyPtr<xcb_query_tree_reply_t> children(
      xcb_query_tree_reply(x.Connection, tree, nullptr));
  if (children == nullptr) return result;
  struct Child {
    xcb_window_t Window;
    xcb_get_window_attributes_cookie_t Attributes;
    xcb_get_property_cookie_t State;
    xcb_get_property_cookie_t Name;
  };
  std::vector<Child> asked;
  for (int i = xcb_query_tree_children_length(children.get()) - 1; i >= 0; --i) {
    const xcb_window_t window = xcb_query_tree_children(children.get())[i];
    asked.push_back({window, xcb_get_window_attributes(x.Connection, window),
                     x.Ask(window, x.Atoms[WmState], 0), x.Ask(window, XCB_ATOM_WM_NAME, 0)});
  }
  // Where there is a list of clients, a mapped child is a client itself or a manager's frame.
  const bool listed = !result.empty();
  const std::vector<WindowHandle> known = result;
  for (const Child& child : asked) {
    const ReplyPtr<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(x.Connection, child.Attributes, nullptr));
    const PropertyPtr state = x.Take(child.State);
    const PropertyPtr name = x.Take(child.Name);
    if (attributes == nullptr || (!IsThere(state) && !IsThere(name))) continue;
    if (listed && attributes->map_state != XCB_MAP_STATE_UNMAPPED) continue;
    if (std::find(known.begin(), known.end(), child.Window) != known.end()) continue;
    result.push_back(child.Window);
  }
  return result;
}

void clsTopWindows::EnumWindows(const std::function<bool(WindowHandle)>& callback) const {
  if (m_display == nullptr) return;
  const std::vector<WindowHandle> windows = Windows();
  for (const WindowHandle window : windows) {
    if (!callback(window)) return;
  }
}

std::string clsTopWindows::GetWindowText(WindowHandle window) const {
  if (!Reaches(window)) return {};
  const Display& x = *m_display;
  const auto askedNew = x.Ask(window, x.Atoms[NetWmName]);
  const auto askedOld = x.Ask(window, XCB_ATOM_WM_NAME);
  const PropertyPtr inUtf8 = x.Take(askedNew);
  const PropertyPtr old = x.Take(askedOld);

  std::string title(BytesOf(inUtf8));
  if (title.empty()) {
    // The other encodings of a title begin as Latin-1.
    if (IsThere(old) && old->type == x.Atoms[Utf8String]) {
      title = BytesOf(old);
    } else {
      text::AppendLatin1(title, BytesOf(old));
    }
  }
  if (const std::size_t end = title.find('\0'); end != std::string::npos) title.resize(end);
  return std::string(text::Left(title, LongestTitle));
}

bool clsTopWindows::IsWindowVisible(WindowHandle window) const {
  if (!Reaches(window)) return false;
  const ReplyPtr<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
      m_display->Connection, xcb_get_window_attributes(m_display->Connection, window), nullptr));
  if (attributes == nullptr) return false;
  return attributes->map_state == XCB_MAP_STATE_VIEWABLE || IsIconic(window);
}

bool clsTopWindows::IsIconic(WindowHandle window) const {
  if (!Reaches(window)) return false;
  const Display& x = *m_display;
  const auto askedState = x.Ask(window, x.Atoms[WmState]);
  const auto askedHints = x.Ask(window, x.Atoms[NetWmState]);
  const std::vector<std::uint32_t> state = NumbersOf(x.Take(askedState));
  const std::vector<std::uint32_t> hints = NumbersOf(x.Take(askedHints));
  return (!state.empty() && state.front() == IconicState) ||
         std::find(hints.begin(), hints.end(), x.Atoms[NetWmStateHidden]) != hints.end();
}

void clsTopWindows::ShowWindow(WindowHandle window, int command) {
  if (!Reaches(window) || command != SwRestore) return;
  m_display->Finish(xcb_map_window_checked(m_display->Connection, window));
  SetForegroundWindow(window);
}

void clsTopWindows::OpenIcon(WindowHandle window) {
  if (IsIconic(window)) ShowWindow(window, SwRestore);
}

// True when a window manager runs that takes requests: the window that it names on the root names
// itself. One that crashed leaves the name behind, but not the window.
bool clsTopWindows::IsManaged() const {
  const Display& x = *m_display;
  const xcb_atom_t check = x.Atoms[NetSupportingWmCheck];
  const std::vector<std::uint32_t> named = NumbersOf(x.Take(x.Ask(x.Root, check)));
  return !named.empty() && NumbersOf(x.Take(x.Ask(named.front(), check))) == named;
}

void clsTopWindows::SetForegroundWindow(WindowHandle window) {
  if (!Reaches(window)) return;
  const Display& x = *m_display;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = x.Atoms[NetActiveWindow];
  message.data.data32[0] = FromUser;
  message.data.data32[1] = XCB_CURRENT_TIME;
  x.Finish(xcb_send_event_checked(
      x.Connection, 0, x.Root,
      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
      reinterpret_cast<const char*>(&message)));
  if (IsManaged()) return;

  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  x.Finish(
      xcb_configure_window_checked(x.Connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &above));
  x.Finish(xcb_set_input_focus_checked(x.Connection, XCB_INPUT_FOCUS_POINTER_ROOT, window,
                                       XCB_CURRENT_TIME));
}

}  // namespace sandrel
