#include "platform/process/clsTopWindows.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/process/modDisplay.h"
#include "support/Variables.h"

namespace sandrel {
namespace {

using Handles = std::vector<WindowHandle>;

Handles First(const clsTopWindows& windows, std::size_t count) {
  Handles first;
  windows.EnumWindows([&](WindowHandle window) {
    first.push_back(window);
    return first.size() < count;
  });
  return first;
}
Handles All(const clsTopWindows& windows) {
  return First(windows, 1000);
}

// A display of its own, where the test is both the programs and the window manager.
class clsTopWindowsTest : public testing::Test {
 protected:
  // The server ends with its last client.
  void SetUp() override {
    m_server = popen("exec Xvfb -displayfd 1 -terminate -nolisten tcp 2>/dev/null", "r");
    char number[16];
    if (std::fgets(number, sizeof(number), m_server) == nullptr) GTEST_SKIP() << "no Xvfb";
    number[std::strcspn(number, "\n")] = '\0';
    setenv("DISPLAY", (std::string(":") + number).c_str(), 1);
    m_x = xcb_connect(nullptr, nullptr);
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_x)).data->root;
  }
  void TearDown() override {
    if (m_x != nullptr) xcb_disconnect(m_x);
    pclose(m_server);
  }

  xcb_atom_t Atom(std::string_view name) {
    const auto length = static_cast<std::uint16_t>(name.size());
    auto* const reply =
        xcb_intern_atom_reply(m_x, xcb_intern_atom(m_x, 0, length, name.data()), nullptr);
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
  }
  void Set(xcb_window_t window, const char* name, const char* type, std::string_view text) {
    xcb_change_property(m_x, XCB_PROP_MODE_REPLACE, window, Atom(name), Atom(type), 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    Focus();
  }
  void Set(xcb_window_t window, const char* name, const Handles& numbers) {
    xcb_change_property(m_x, XCB_PROP_MODE_REPLACE, window, Atom(name), XCB_ATOM_CARDINAL, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
    Focus();
  }
  // Asked after the server has done all that came before.
  xcb_window_t Focus() {
    auto* const reply = xcb_get_input_focus_reply(m_x, xcb_get_input_focus(m_x), nullptr);
    const xcb_window_t focus = reply->focus;
    std::free(reply);
    return focus;
  }
  xcb_window_t Window(const char* latin1Title, bool mapped) {
    const xcb_window_t window = xcb_generate_id(m_x);
    xcb_create_window(m_x, XCB_COPY_FROM_PARENT, window, m_root, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    if (latin1Title != nullptr) Set(window, "WM_NAME", "STRING", latin1Title);
    if (mapped) xcb_map_window(m_x, window);
    Focus();
    return window;
  }

  const test::Variables m_variables{{"DISPLAY", {}}, {"QT_QPA_PLATFORM", {}}};
  FILE* m_server = nullptr;
  xcb_connection_t* m_x = nullptr;
  xcb_window_t m_root = 0;
};

TEST_F(clsTopWindowsTest, ReadsAndRaisesWindowsThatNobodyManages) {
  EXPECT_EQ(DisplayProblem(), "");
  const xcb_window_t low = Window("caf\xE9", true);
  const xcb_window_t high = Window("high", true);
  const xcb_window_t hidden = Window("hidden", false);
  Window(nullptr, true);  // neither a title nor a state: no top-level window
  clsTopWindows windows;
  EXPECT_EQ(All(windows), Handles({hidden, high, low}));
  EXPECT_EQ(First(windows, 1), Handles({hidden}));

  EXPECT_EQ(windows.GetWindowText(low), "café");
  const std::string almost(254, 'x');
  Set(low, "_NET_WM_NAME", "UTF8_STRING", almost + "€y");
  EXPECT_EQ(windows.GetWindowText(low), almost + "€");
  EXPECT_TRUE(windows.IsWindowVisible(low));
  EXPECT_FALSE(windows.IsWindowVisible(hidden));
  windows.SetForegroundWindow(low);
  EXPECT_EQ(First(windows, 1), Handles({low}));
  EXPECT_EQ(Focus(), low);
  windows.ShowWindow(hidden, SwRestore);
  EXPECT_TRUE(windows.IsWindowVisible(hidden));

  setenv("DISPLAY", ":65000", 1);
  clsTopWindows withoutDisplay;
  for (clsTopWindows* const some : {&windows, &withoutDisplay}) {
    const WindowHandle gone = 0x7fffff;
    some->ShowWindow(gone, SwRestore);
    some->SetForegroundWindow(0);
    EXPECT_EQ(some->GetWindowText(gone), "");
    EXPECT_FALSE(some->IsWindowVisible(gone) || some->IsIconic(gone));
  }
  EXPECT_EQ(All(withoutDisplay), Handles());
  EXPECT_EQ(Focus(), hidden);
}

TEST_F(clsTopWindowsTest, AsksTheWindowManager) {
  const xcb_window_t one = Window("one", true);
  const xcb_window_t two = Window("two", true);
  const xcb_window_t inTray = Window("in the tray", false);
  const xcb_window_t frame = Window("a frame", true);
  clsTopWindows windows;
  Set(m_root, "_NET_CLIENT_LIST_STACKING", {one, two});
  EXPECT_EQ(All(windows), Handles({two, one, inTray}));

  xcb_unmap_window(m_x, one);
  Set(one, "WM_STATE", {3, 0});
  Set(two, "_NET_WM_STATE", {Atom("_NET_WM_STATE_ABOVE"), Atom("_NET_WM_STATE_HIDDEN")});
  EXPECT_TRUE(windows.IsIconic(one) && windows.IsIconic(two));
  EXPECT_FALSE(windows.IsIconic(inTray));
  EXPECT_TRUE(windows.IsWindowVisible(one)) << "a minimized window counts as visible";

  Set(m_root, "_NET_SUPPORTING_WM_CHECK", {frame});
  Set(frame, "_NET_SUPPORTING_WM_CHECK", {frame});
  const std::uint32_t manages = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
  xcb_change_window_attributes(m_x, m_root, XCB_CW_EVENT_MASK, &manages);
  Focus();
  windows.OpenIcon(inTray);  // not minimized: nothing happens
  windows.OpenIcon(one);
  const xcb_atom_t activate = Atom("_NET_ACTIVE_WINDOW");
  std::string asked;
  while (xcb_generic_event_t* const event = xcb_poll_for_event(m_x)) {
    const auto* map = reinterpret_cast<const xcb_map_request_event_t*>(event);
    const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
    if (map->response_type == XCB_MAP_REQUEST && map->window == one) {
      asked += "map;";
    } else {
      asked += message->window == one && message->type == activate ? "activate;" : "another;";
    }
    std::free(event);
  }
  EXPECT_EQ(asked, "map;activate;");
}

}  // namespace
}  // namespace sandrel
