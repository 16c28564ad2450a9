// kestrel-chime EVENT: plays one event sound of the desktop's sound theme and ends when it was heard. Status
// 0 when it was, 1 when it cannot be played, 2 without an event.
#include <canberra.h>
#include <memory>
#include <semaphore.h>
#include <time.h>
#include <unistd.h>

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
  void operator()(ca_proplist* properties) const { ca_proplist_destroy(properties); }
};

bool play(const char* event) {
  // The thread that plays writes to it until the process ends.
  static Outcome outcome;
  ::sem_init(&outcome.isKnown, 0, 0);
  // Never destroyed: that unloads the driver while its thread, which told the end, may still run in it.
  ca_context* context = nullptr;
  if (ca_context_create(&context) != CA_SUCCESS) return false;
  ca_proplist* newProperties = nullptr;
  if (ca_proplist_create(&newProperties) != CA_SUCCESS) return false;
  const std::unique_ptr<ca_proplist, Release> properties(newProperties);
  ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Kestrel", CA_PROP_APPLICATION_ID,
                          "com.kestrel.app", nullptr);
  ca_proplist_sets(properties.get(), CA_PROP_EVENT_ID, event);
  ca_proplist_sets(properties.get(), CA_PROP_MEDIA_ROLE, "event");
  if (ca_context_play_full(context, 1, properties.get(), onFinished, &outcome) != CA_SUCCESS) return false;
  timespec deadline{};
  ::clock_gettime(CLOCK_REALTIME, &deadline);
  deadline.tv_sec += kLongestSeconds;
  return ::sem_timedwait(&outcome.isKnown, &deadline) == 0 && outcome.code == CA_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  ::_exit(play(argv[1]) ? 0 : 1);
}
