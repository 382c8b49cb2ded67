#include <kestdb.h>

#include <algorithm>
#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "Json.h"
#include "LockWait.h"
#include "StudyTables.h"
#include "Visit.h"

namespace {

struct InfoOptions : StudyOptions {
  bool json = false;
};

// ---- What there is to tell ----

/// The blocks on the free list of the data file.
struct FreeSpace {
  long blocks = 0;
  long bytes = 0;
  bool broken = false;
};

struct ObjectCount {
  std::string name;
  long count;
};

struct TaskLine {
  long id;
  std::string type;
  std::string status;
  Cell best;
  std::string title;
};

struct StudyInfo {
  std::optional<vbFileHeader> data;
  std::optional<vbFileHeader> index;
  FreeSpace freeSpace;
  unsigned long lockOwner = 0;  // of the lock in the header
  std::vector<ObjectCount> objects;
  std::vector<TaskLine> tasks;
};

/// Only looks: to count by the library would mark a broken list.
FreeSpace FreeSpaceOf(vbDatabase& file) {
  FreeSpace space;
  const long most = file.Length() / static_cast<long>(file.BlockOverhead());
  vbINT32 address = file.GetVBDFreeSpace();
  space.broken = address == vbFSListCorrupt;
  while (!space.broken && address != 0) {
    vbBlockHeader header;
    try {
      file.ReadBlockHdr(&header, address);
    } catch (const CEngErr&) {
      space.broken = true;
      break;
    }
    ++space.blocks;
    space.bytes += static_cast<long>(header.Length.PackBits());
    space.broken = !header.IsFree() || space.blocks > most;
    address = header.NextDeleted;
  }
  return space;
}

std::vector<ObjectCount> CountObjects(const POD& pod) {
  std::vector<ObjectCount> counts;
  for (unsigned i = 0; i < pod.IndexTable()->Count() && i < std::size(pszIndexDesc); ++i) {
    const vBtree* tree = pod.Index(i);
    if (tree == nullptr || tree->EntryCount == 0) continue;
    const std::string description = pszIndexDesc[i];
    counts.push_back({description.substr(0, description.find(' ')), tree->EntryCount});
  }
  return counts;
}

std::vector<TaskLine> ListTasks(POD* pod) {
  std::vector<TaskLine> lines;
  VisitAll<CTask>(pod, [&](const CTask& task) {
    CResult result(pod);
    const bool hasResult = Load(result, task.m_nID);
    lines.push_back({task.m_nID, TaskTypeName(task.m_nType),
                     hasResult ? RunStatusName(result.m_nRunStatus) : "no result",
                     BestObjective(pod, static_cast<int>(long{task.m_nID})), task.m_strTitle});
  });
  return lines;
}

StudyInfo Gather(const Study& study) {
  const CLock lock(study.Pod(), 0);
  vbDatabase& data = *study.Pod()->DataFile();
  StudyInfo info;
  info.data = data.FileHeader();
  info.index = study.Pod()->IndexFile()->FileHeader();
  info.freeSpace = FreeSpaceOf(data);
  vbFileLockHeader fileLock;
  data.ReadFileLockHdr(fileLock);
  info.lockOwner = fileLock.Protect;
  info.objects = CountObjects(*study.Pod());
  info.tasks = ListTasks(study.Pod());
  return info;
}

// ---- The screen ----

constexpr std::size_t kTasksShown = 10;

std::string BlankIfNone(char letter) {
  return letter == '\0' || letter == ' ' ? "none" : std::string(1, letter);
}

void PrintFile(std::FILE* out, const char* label, const std::string& path,
               const std::optional<vbFileHeader>& header) {
  const long bytes = BytesOf(path);
  if (bytes < 0) {
    std::fprintf(out, "%-12s none\n", label);
  } else if (!header) {
    std::fprintf(out, "%-12s %ld bytes, no header\n", label, bytes);
  } else {
    std::fprintf(out, "%-12s %ld bytes, revision %s, version %ld\n", label, bytes,
                 BlankIfNone(static_cast<char>(header->Revision)).c_str(),
                 header->Version.PackBits());
  }
}

void PrintFreeSpace(std::FILE* out, const FreeSpace& space) {
  if (space.broken) {
    std::fprintf(out, "%-12s the free list is broken\n", "Free space");
  } else {
    std::fprintf(out, "%-12s %ld bytes in %ld block%s\n", "Free space", space.bytes, space.blocks,
                 space.blocks == 1 ? "" : "s");
  }
}

void PrintLock(std::FILE* out, unsigned long owner) {
  if (owner == 0) {
    std::fprintf(out, "%-12s free\n", "Lock");
  } else {
    std::fprintf(out, "%-12s the header has one of owner %lu\n", "Lock", owner);
  }
}

void PrintTasks(std::FILE* out, const std::vector<TaskLine>& tasks) {
  for (std::size_t i = 0; i < tasks.size() && i < kTasksShown; ++i) {
    const TaskLine& task = tasks[i];
    const bool hasBest = !task.best.Is(Cell::Kind::Nothing);
    std::fprintf(out, "Task %-7ld %s, %s%s%s\n", task.id, task.type.c_str(), task.status.c_str(),
                 hasBest ? ", best " : "", CellText(task.best).c_str());
  }
  if (tasks.size() > kTasksShown) {
    std::fprintf(out, "%zu tasks more: kestdb list tasks STUDY\n", tasks.size() - kTasksShown);
  }
}

void PrintInfo(std::FILE* out, const StudyFiles& files, const StudyInfo& info) {
  std::fprintf(out, "%-12s %s\n", "Study", files.base.c_str());
  PrintFile(out, "Data file", files.data, info.data);
  PrintFile(out, "Index file", files.index, info.index);
  PrintFreeSpace(out, info.freeSpace);
  PrintLock(out, info.lockOwner);
  std::fprintf(out, "%-12s", "Objects");
  for (const ObjectCount& count : info.objects) {
    const bool first = &count == &info.objects.front();
    std::fprintf(out, "%*s %6ld %s\n", first ? 0 : 12, "", count.count, count.name.c_str());
  }
  PrintTasks(out, info.tasks);
}

// ---- For a program ----

std::string FileJson(const std::string& path, const std::optional<vbFileHeader>& header) {
  if (!header) return "null";
  return "{\"bytes\": " + std::to_string(BytesOf(path)) +
         ", \"revision\": " + JsonText(BlankIfNone(static_cast<char>(header->Revision))) +
         ", \"version\": " + std::to_string(header->Version.PackBits()) + "}";
}

std::string ObjectsJson(const std::vector<ObjectCount>& objects) {
  std::string json;
  for (const ObjectCount& count : objects) {
    json += (json.empty() ? "" : ", ") + JsonText(count.name) + ": " + std::to_string(count.count);
  }
  return "{" + json + "}";
}

std::string TasksJson(const std::vector<TaskLine>& tasks) {
  std::string json;
  for (const TaskLine& task : tasks) {
    json += (json.empty() ? "\n" : ",\n");
    json += "    {\"task\": " + std::to_string(task.id) + ", \"type\": " + JsonText(task.type) +
            ", \"status\": " + JsonText(task.status) + ", \"best\": " + JsonValue(task.best) +
            ", \"title\": " + JsonText(task.title) + "}";
  }
  return json.empty() ? "[]" : "[" + json + "\n  ]";
}

void PrintJson(std::FILE* out, const StudyFiles& files, const StudyInfo& info) {
  const FreeSpace& space = info.freeSpace;
  std::fprintf(out, "{\n  \"study\": %s,\n", JsonText(files.base).c_str());
  std::fprintf(out, "  \"data_file\": %s,\n", FileJson(files.data, info.data).c_str());
  std::fprintf(out, "  \"index_file\": %s,\n", FileJson(files.index, info.index).c_str());
  std::fprintf(out, "  \"free_list\": {\"blocks\": %ld, \"bytes\": %ld, \"broken\": %s},\n",
               space.blocks, space.bytes, space.broken ? "true" : "false");
  std::fprintf(out, "  \"header_lock_owner\": %lu,\n", info.lockOwner);
  std::fprintf(out, "  \"objects\": %s,\n", ObjectsJson(info.objects).c_str());
  std::fprintf(out, "  \"tasks\": %s\n}\n", TasksJson(info.tasks).c_str());
}

// ---- The command ----

/// A locked study shows what can be told from outside.
void PrintLocked(const StudyFiles& files) {
  std::printf("%-12s %s\n", "Study", files.base.c_str());
  PrintFile(stdout, "Data file", files.data, HeaderOf(files.data));
  PrintFile(stdout, "Index file", files.index, HeaderOf(files.index));
  std::printf("%-12s %s\n", "Lock", LockedSince(files.lock).c_str());
}

int ShowInfo(const InfoOptions& options) {
  const StudyFiles files(options.name);
  const bool givesUp = options.wait == 0.0 && BytesOf(files.lock) >= 0 && !options.json;
  if (givesUp && BytesOf(files.data) >= 0) PrintLocked(files);
  Study study(options);
  const StudyInfo info = Gather(study);
  study.Close();
  if (options.json) {
    PrintJson(stdout, files, info);
  } else {
    PrintInfo(stdout, files, info);
  }
  return info.freeSpace.broken ? kFault : kDone;
}

}  // namespace

void AddInfo(CLI::App& program, Action& action) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App& command = *program.add_subcommand(
      "info", "Show what a study holds: sizes, versions, objects, tasks, free space, lock");
  AddStudy(command, *options);
  command.add_flag("--json", options->json, "Print it as JSON");
  command.footer("Examples:\n  kestdb info beam\n  kestdb info --json beam.ksb");
  command.callback([&action, options] { action = [options] { return ShowInfo(*options); }; });
}
