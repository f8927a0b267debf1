// Folder page benchmark (not a test): quorvane.exe's folder tree under Wine, from outside.
//
//   win_folders <runs> <result file> <size>...
//
// For each size N it makes C:\QuorvaneBench\N<N> with N empty sub-folders (once; kept for the
// next run of the benchmark), then, <runs> times: starts quorvane.exe from its own folder and
// waits for its main window ("start": the load routine with its one pass over the drives, and
// the window shown), clicks CmdMenu(1) ("page": the folder page to the window repainted), opens
// drive C and "Quorvanebench" (not timed), and opens the folder N<N> ("open": the second click of
// a double click on it to its N children in the tree view and the window repainted). The program
// ends through "Quorvane.Exit" after each run.
//
// If opening the page read folders, "start" and "page" would grow with N; only "open" may.
// The figures go to the result file: a program started into a Wine virtual desktop has no
// standard output its caller can read.
#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

#include "WinTiming.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "driving/Controls.h"
#include "driving/Processes.h"
#include "driving/Program.h"

namespace {

using quorvane::bench::Median;
using quorvane::bench::Now;
namespace driving = quorvane::driving;

constexpr double kTimeoutMs = 120000.0;

// Waits until the program is back at its loop with nothing left to paint.
bool Settle(HWND main, double since) {
  return quorvane::bench::Settle(main, since, kTimeoutMs, 60000);
}

// The folder with `count` empty sub-folders, made unless it is there with them.
bool MakeFolder(const std::string& folder, int count) {
  ::CreateDirectoryA("C:\\QuorvaneBench", nullptr);
  ::CreateDirectoryA(folder.c_str(), nullptr);
  for (int i = 0; i < count; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "\\f%05d", i);
    const std::string path = folder + name;
    if (::CreateDirectoryA(path.c_str(), nullptr) == 0 &&
        ::GetLastError() != ERROR_ALREADY_EXISTS) {
      return false;
    }
  }
  return true;
}

// The item of that text among the children of `parent` (null: the top level).
HTREEITEM ChildOf(HWND tree, HTREEITEM parent, const std::string& text) {
  std::vector<driving::RemoteItem> items;
  int count = 0;
  std::string error;
  if (!driving::ReadTreeView(tree, items, count, error)) return nullptr;
  // The children of `parent` follow it one level deeper.
  int level = 0;
  std::size_t from = 0;
  if (parent != nullptr) {
    for (; from < items.size() && items[from].handle != parent; ++from) {
    }
    if (from == items.size()) return nullptr;
    level = items[from].level + 1;
    ++from;
  }
  for (std::size_t i = from; i < items.size(); ++i) {
    if (items[i].level < level) break;
    if (items[i].level == level && items[i].text == text) return items[i].handle;
  }
  return nullptr;
}

bool Expanded(HWND tree, HTREEITEM item) {
  const auto state = static_cast<UINT>(
      ::SendMessageA(tree, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED));
  return (state & TVIS_EXPANDED) != 0;
}

// Opens an item with a double click on its text. With `timed`, the milliseconds from the second
// click to the item open and the window settled; -1 on failure.
double Open(HWND main, HWND tree, HTREEITEM item, bool timed) {
  RECT area{};
  std::string error;
  if (!driving::TreeItemRectOf(tree, item, area, error)) return -1.0;
  const POINT at = driving::Centre(area);
  if (!timed) {
    driving::DoubleClickAt(at);
    const double since = Now();
    while (!Expanded(tree, item) && Now() - since < kTimeoutMs) ::Sleep(10);
    return Settle(main, since) && Expanded(tree, item) ? 0.0 : -1.0;
  }
  // The first click selects it and shows its icon; the second, well within the double-click
  // time, opens it.
  driving::ClickAtOnce(at);
  const double first = Now();
  if (!Settle(main, first)) return -1.0;
  const double since = Now();
  driving::ClickAtOnce(at);
  while (!Expanded(tree, item) && Now() - since < kTimeoutMs) ::Sleep(1);
  if (!Expanded(tree, item) || !Settle(main, since)) return -1.0;
  return Now() - since;
}

// What opening the folder asks of the platform, alone, from this process: for each sub-folder
// the two queries of the system image list that give its closed and open image (the program
// asks these of every child), and the listing that tells whether it has sub-folders of its own.
// Milliseconds of each of the two parts.
void PlatformAlone(const std::string& folder, int count, double& queries, double& listings) {
  std::vector<std::string> paths;
  for (int i = 0; i < count; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "\\f%05d", i);
    paths.push_back(folder + name);
  }
  double since = Now();
  for (const std::string& path : paths) {
    SHFILEINFOA info{};
    ::SHGetFileInfoA(path.c_str(), 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_SMALLICON);
    ::SHGetFileInfoA(path.c_str(), 0, &info, sizeof info,
                     SHGFI_SYSICONINDEX | SHGFI_SMALLICON | SHGFI_OPENICON);
  }
  queries = Now() - since;
  since = Now();
  for (const std::string& path : paths) {
    WIN32_FIND_DATAA found{};
    HANDLE search = ::FindFirstFileA((path + "\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
      while (::FindNextFileA(search, &found) != 0) {
      }
      ::FindClose(search);
    }
  }
  listings = Now() - since;
}

struct Series {
  int size = 0;
  std::vector<double> start, page, open;
  int children = 0;
  int failures = 0;
};

void RunOnce(const std::string& program, Series& series) {
  const std::string folder = "N" + std::to_string(series.size);
  driving::Child child;
  driving::Verdict verdict;
  const double launched = Now();
  HWND main = driving::StartWithMainWindow(program, "", true, child, verdict);
  if (main == nullptr) {
    ++series.failures;
    return;
  }
  const double started = Now() - launched;
  bool ok = Settle(main, Now());
  HWND command = driving::FindControl(main, "CmdMenu(1)");
  HWND tree = driving::FindControl(main, "Tree");
  double page = -1.0;
  if (ok && command != nullptr && tree != nullptr) {
    driving::MoveTo(driving::Centre(driving::ScreenRect(command)));
    Settle(main, Now());
    const double since = Now();
    driving::ClickAtOnce(driving::Centre(driving::ScreenRect(command)));
    while (::IsWindowVisible(tree) == 0 && Now() - since < kTimeoutMs) ::Sleep(1);
    if (Settle(main, since)) page = Now() - since;
  }
  double open = -1.0;
  if (page >= 0.0) {
    HTREEITEM root = ChildOf(tree, nullptr, "My Computer");
    HTREEITEM c = nullptr;
    std::vector<driving::RemoteItem> items;
    int count = 0;
    std::string error;
    if (driving::ReadTreeView(tree, items, count, error)) {
      for (const auto& item : items) {
        if (item.level == 1 && item.text.size() >= 4 &&
            item.text.compare(item.text.size() - 4, 4, "(C:)") == 0) {
          c = item.handle;
        }
      }
    }
    if (root != nullptr && c != nullptr && Open(main, tree, c, false) >= 0.0) {
      HTREEITEM bench = ChildOf(tree, c, "Quorvanebench");
      if (bench != nullptr && Open(main, tree, bench, false) >= 0.0) {
        HTREEITEM target = ChildOf(tree, bench, folder);
        if (target != nullptr) {
          open = Open(main, tree, target, true);
          int children = 0;
          for (HTREEITEM shown = reinterpret_cast<HTREEITEM>(::SendMessageA(
                   tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(target)));
               shown != nullptr;
               shown = reinterpret_cast<HTREEITEM>(::SendMessageA(
                   tree, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(shown)))) {
            ++children;
          }
          series.children = children;
          if (children != series.size) open = -1.0;
        }
      }
    }
  }
  driving::EndThroughExit(main, child);
  if (driving::IsRunning(child)) driving::Terminate(child);
  if (page < 0.0 || open < 0.0) {
    ++series.failures;
    return;
  }
  series.start.push_back(started);
  series.page.push_back(page);
  series.open.push_back(open);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 2;
  const int runs = std::max(1, std::atoi(argv[1]));
  std::FILE* out = std::fopen(argv[2], "wb");
  if (out == nullptr) return 2;
  char own[MAX_PATH] = {};
  ::GetModuleFileNameA(nullptr, own, MAX_PATH);
  std::string program = own;
  program = program.substr(0, program.find_last_of('\\') + 1) + "quorvane.exe";

  for (int a = 3; a < argc; ++a) {
    Series series;
    series.size = std::atoi(argv[a]);
    if (!MakeFolder("C:\\QuorvaneBench\\N" + std::to_string(series.size), series.size)) {
      std::fprintf(out, "N%d: the folder could not be made\n", series.size);
      continue;
    }
    for (int run = 0; run < runs; ++run) RunOnce(program, series);
    double queries = 0.0;
    double listings = 0.0;
    PlatformAlone("C:\\QuorvaneBench\\N" + std::to_string(series.size), series.size, queries,
                  listings);
    std::fprintf(out,
                 "%5d sub-folders: start %.0f ms, page %.1f ms, open %.1f ms (medians of %zu runs;"
                 " %d children shown; %d runs failed); of the platform alone: %d image-list"
                 " queries %.0f ms, %d listings %.0f ms\n",
                 series.size, Median(series.start), Median(series.page), Median(series.open),
                 series.open.size(), series.children, series.failures, 2 * series.size, queries,
                 series.size, listings);
    std::fflush(out);
  }
  std::fprintf(out, "done\n");
  std::fclose(out);
  return 0;
}
