// kestrel-chime EVENT: plays one event sound of the desktop's sound theme and ends when it was heard. Status
// 0 when it was, 1 when it cannot be played, 2 without an event.
#include <canberra.h>
#include <memory>
#include <semaphore.h>
#include <time.h>

namespace {

/// Longer than any event sound.
constexpr int kLongestSeconds = 10;

struct Outcome {
  int code = CA_SUCCESS;
  sem_t isKnown{};
};

void onFinished(ca_context*, std::uint32_t, int code, void* data) {
  auto& outcome = *static_cast<Outcome*>(data);
  outcome.code = code;
  ::sem_post(&outcome.isKnown);
}

struct Release {
  void operator()(ca_context* context) const { ca_context_destroy(context); }
  void operator()(ca_proplist* properties) const { ca_proplist_destroy(properties); }
};

bool play(const char* event) {
  // Outlives the context, whose thread writes to it.
  Outcome outcome;
  ::sem_init(&outcome.isKnown, 0, 0);
  ca_context* newContext = nullptr;
  if (ca_context_create(&newContext) != CA_SUCCESS) return false;
  const std::unique_ptr<ca_context, Release> context(newContext);
  ca_proplist* newProperties = nullptr;
  if (ca_proplist_create(&newProperties) != CA_SUCCESS) return false;
  const std::unique_ptr<ca_proplist, Release> properties(newProperties);
  ca_context_change_props(context.get(), CA_PROP_APPLICATION_NAME, "Kestrel", CA_PROP_APPLICATION_ID,
                          "com.kestrel.app", nullptr);
  ca_proplist_sets(properties.get(), CA_PROP_EVENT_ID, event);
  ca_proplist_sets(properties.get(), CA_PROP_MEDIA_ROLE, "event");
  if (ca_context_play_full(context.get(), 1, properties.get(), onFinished, &outcome) != CA_SUCCESS)
    return false;
  timespec deadline{};
  ::clock_gettime(CLOCK_REALTIME, &deadline);
  deadline.tv_sec += kLongestSeconds;
  return ::sem_timedwait(&outcome.isKnown, &deadline) == 0 && outcome.code == CA_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  return play(argv[1]) ? 0 : 1;
}
