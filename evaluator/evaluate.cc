#include <time.h>

#include <atomic>
#include <deque>
#include <mutex>
#include <utility>

#include "evaluator/evaluator.h"
#include "evaluator/kept_plan.h"
#include "evaluator/plugin/entry_points.h"
#include "evaluator/program.h"
#include "evaluator/registry.h"
#include "evaluator/run.h"

namespace gatotu {
namespace {

std::atomic<InspectorContext*> inspector_context{nullptr};

// Guarded by the registry's lock, like all that evaluates. Never destroyed: an evaluation may
// still run on another thread when the process ends.
struct Storage {
  std::deque<Workspace> workspaces;  // one for each level of nesting
  std::size_t depth = 0;
  std::uint64_t kept_generation = 0;
};

constinit Storage* the_storage = nullptr;

Storage& TheStorage() {
  if (the_storage == nullptr) the_storage = new Storage;
  return *the_storage;
}

// Memory for whoever calls inspectors without an evaluation.
struct OutsideMemory {
  std::mutex mutex;
  Arena arena;
};

OutsideMemory& TheOutsideMemory() {
  static auto& memory = *new OutsideMemory;
  return memory;
}

template <class Container>
void GrowTo(Container& container, std::size_t size) {
  if (container.size() < size) container.resize(size);
}

// One level of evaluation: its workspace, sized for the expression.
class Level {
 public:
  explicit Level(Expression::Program const& program)
      : storage_(TheStorage()), workspace_(Enter(storage_)), copies_(program.layout.Copies()) {
    GrowTo(workspace_.frame, program.layout.Size());
    GrowTo(workspace_.copies, copies_);
    GrowTo(workspace_.values, program.shower->CountValues());
  }
  ~Level() {
    workspace_.arena.Reset();
    for (std::size_t i = 0; i < copies_; ++i) workspace_.copies[i].Trim();
    --storage_.depth;
  }
  Level(Level const&) = delete;
  Level& operator=(Level const&) = delete;

  Workspace& Room() { return workspace_; }
  bool IsOutermost() const { return storage_.depth == 1; }

 private:
  static Workspace& Enter(Storage& storage) {
    if (storage.workspaces.size() == storage.depth) storage.workspaces.emplace_back();
    return storage.workspaces[storage.depth++];
  }

  Storage& storage_;
  Workspace& workspace_;
  std::size_t copies_;
};

void ClearCaches() {
  if (registry.caches.head == nullptr) return;
  timespec now{};
  clock_gettime(CLOCK_REALTIME_COARSE, &now);
  ForEachRecord<CacheRecord>(registry.caches, [&](CacheRecord const& record) {
    Instant instant{now.tv_sec * 1'000'000 + now.tv_nsec / 1000};
    if (record.clear != nullptr) record.clear(instant, record.context);
  });
}

// What a plug-in computed is not kept beyond it.
void DropResultsOfUnloaded() {
  auto& storage = TheStorage();
  if (storage.kept_generation == registry.generation) return;
  storage.kept_generation = registry.generation;
  ++KeptPlan::epoch;
}

Evaluation MakeStale(Expression::Program const& program) {
  Evaluation evaluation;
  evaluation.outcome = Outcome::kStale;
  evaluation.diagnostic.code = "stale-expression";
  evaluation.diagnostic.message =
      "inspectors were withdrawn since this expression was compiled; compile it again";
  evaluation.diagnostic.position = PositionIn(program.text, 0, program.text.size());
  return evaluation;
}

Evaluation MakeEvaluation(Expression::Program const& program, Run const& run, Flow flow) {
  Evaluation evaluation;
  if (flow != Flow::kFail) return evaluation;
  Failure const& failure = run.What();
  evaluation.outcome = failure.outcome;
  evaluation.diagnostic.code = failure.code;
  evaluation.diagnostic.message = failure.message;
  evaluation.diagnostic.position = PositionIn(program.text, failure.span.offset, failure.span.size);
  if (failure.code == "not-unique") evaluation.diagnostic.suggestion = failure.suggestion;
  evaluation.evidence_begin = failure.evidence_begin;
  evaluation.evidence_end = failure.evidence_end;
  return evaluation;
}

Flow PushValues(Expression::Program const& program, Run& run, ValueCallback callback) {
  return program.plan->Produce(run, [&](void const* address) {
    Arena::Mark mark = run.Memory().Here();
    Value const* shown = nullptr;
    Flow flow = program.shower->Show(run, address, shown);
    if (flow == Flow::kContinue) {
      flow = callback(*shown) ? Flow::kContinue : Flow::kStop;
    } else if (program.plan->is_many && run.HasNoSuchObject()) {
      // Like any other step of a plural: a value without one contributes nothing.
      run.ForgetFailure();
      flow = Flow::kContinue;
    }
    run.Memory().Rewind(mark);
    return flow;
  });
}

}  // namespace

Evaluation Evaluate(Expression const& expression, ValueCallback callback,
                    EvaluateOptions const& options) {
  std::lock_guard lock(registry.mutex);
  Expression::Program const& program = ExpressionAccess::Of(expression);
  if (program.generation != registry.generation) return MakeStale(program);
  DropResultsOfUnloaded();
  Level level(program);
  if (level.IsOutermost()) {
    Run::stop_request.store(false, std::memory_order_relaxed);
    if (!options.keep_caches) ClearCaches();
  }
  Run run(level.Room(), options);
  return MakeEvaluation(program, run, PushValues(program, run, callback));
}

void Interrupt() noexcept { Run::stop_request.store(true, std::memory_order_relaxed); }

void SetInspectorContext(InspectorContext* context) {
  std::lock_guard lock(registry.mutex);
  inspector_context.store(context, std::memory_order_release);
  ++KeptPlan::epoch;
}

void DropKeptResults() {
  std::lock_guard lock(registry.mutex);
  ++KeptPlan::epoch;
}

}  // namespace gatotu

void* Allocate_Inspector_Memory(unsigned long size) {
  if (gatotu::Run* run = gatotu::Run::Current()) return run->Memory().Allocate(size);
  auto& outside = gatotu::TheOutsideMemory();
  std::lock_guard lock(outside.mutex);
  return outside.arena.Allocate(size);
}

InspectorContext* Get_Generic_Inspector_Context() {
  return gatotu::inspector_context.load(std::memory_order_acquire);
}

int Check_For_Inspector_Interruption() {
  gatotu::Run const* run = gatotu::Run::Current();
  if (run != nullptr && run->IsToStop()) throw gatotu::InspectorInterruption();
  return 0;
}
