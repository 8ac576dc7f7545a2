// SPDX-License-Identifier: ISC
// A MIDI sequencer in which nothing ever happens, loaded before ALSA's library: Qtractor starts only
// with a sequencer, which machines without sound hardware lack. What works on plain structures stays
// ALSA's.
#include <alsa/asoundlib.h>
#include <errno.h>
#include <unistd.h>

static int silence[2] = {-1, -1};  // a pipe into which nobody writes
static int next_port;

int snd_seq_open(snd_seq_t** handle, const char* name, int streams, int mode) {
    (void)name, (void)streams, (void)mode;
    *handle = (snd_seq_t*)&silence;
    return pipe(silence);
}
int snd_seq_poll_descriptors_count(snd_seq_t* seq, short events) {
    (void)seq, (void)events;
    return 1;
}
int snd_seq_poll_descriptors(snd_seq_t* seq, struct pollfd* fds, unsigned count, short events) {
    (void)seq;
    if (count > 0) *fds = (struct pollfd){.fd = silence[0], .events = events & POLLIN};
    return 1;
}
int snd_seq_create_simple_port(snd_seq_t* seq, const char* name, unsigned caps, unsigned type) {
    (void)seq, (void)name, (void)caps, (void)type;
    return next_port++;
}
int snd_seq_client_id(snd_seq_t* seq) {
    (void)seq;
    return 128;
}

// Requests that succeed without effect, and queries that find nothing.
#define ANSWER(value, name, ...) \
    int name(__VA_ARGS__) { return value; }
#define SEQ snd_seq_t* seq __attribute__((unused))
#define ARG(type, name) type name __attribute__((unused))
ANSWER(0, snd_seq_close, SEQ)
ANSWER(0, snd_seq_alloc_queue, SEQ)
ANSWER(0, snd_seq_free_queue, SEQ, ARG(int, queue))
ANSWER(0, snd_seq_control_queue, SEQ, ARG(int, queue), ARG(int, type), ARG(int, value),
       ARG(snd_seq_event_t*, event))
ANSWER(0, snd_seq_delete_simple_port, SEQ, ARG(int, port))
ANSWER(0, snd_seq_drain_output, SEQ)
ANSWER(0, snd_seq_drop_input, SEQ)
ANSWER(0, snd_seq_drop_output, SEQ)
ANSWER(-EAGAIN, snd_seq_event_input, SEQ, ARG(snd_seq_event_t**, event))
ANSWER(0, snd_seq_event_input_pending, SEQ, ARG(int, fetch))
ANSWER(0, snd_seq_event_output, SEQ, ARG(snd_seq_event_t*, event))
ANSWER(0, snd_seq_event_output_direct, SEQ, ARG(snd_seq_event_t*, event))
ANSWER(-ENOENT, snd_seq_get_any_client_info, SEQ, ARG(int, client), ARG(snd_seq_client_info_t*, info))
ANSWER(-ENOENT, snd_seq_get_any_port_info, SEQ, ARG(int, client), ARG(int, port),
       ARG(snd_seq_port_info_t*, info))
ANSWER(0, snd_seq_get_port_info, SEQ, ARG(int, port), ARG(snd_seq_port_info_t*, info))
ANSWER(0, snd_seq_get_queue_status, SEQ, ARG(int, queue), ARG(snd_seq_queue_status_t*, status))
ANSWER(0, snd_seq_get_queue_tempo, SEQ, ARG(int, queue), ARG(snd_seq_queue_tempo_t*, tempo))
ANSWER(-ENOENT, snd_seq_query_next_client, SEQ, ARG(snd_seq_client_info_t*, info))
ANSWER(-ENOENT, snd_seq_query_next_port, SEQ, ARG(snd_seq_port_info_t*, info))
ANSWER(-ENOENT, snd_seq_query_port_subscribers, SEQ, ARG(snd_seq_query_subscribe_t*, query))
ANSWER(0, snd_seq_remove_events, SEQ, ARG(snd_seq_remove_events_t*, events))
ANSWER(0, snd_seq_set_client_name, SEQ, ARG(const char*, name))
ANSWER(0, snd_seq_set_port_info, SEQ, ARG(int, port), ARG(snd_seq_port_info_t*, info))
ANSWER(0, snd_seq_set_queue_tempo, SEQ, ARG(int, queue), ARG(snd_seq_queue_tempo_t*, tempo))
ANSWER(0, snd_seq_set_queue_timer, SEQ, ARG(int, queue), ARG(snd_seq_queue_timer_t*, timer))
ANSWER(0, snd_seq_subscribe_port, SEQ, ARG(snd_seq_port_subscribe_t*, subscription))
ANSWER(0, snd_seq_unsubscribe_port, SEQ, ARG(snd_seq_port_subscribe_t*, subscription))
