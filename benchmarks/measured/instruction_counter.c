/*
 * A plugin for qemu's user mode that counts the instructions of the emulated processor between two marks, and prints
 * the count. A mark is a write to the file descriptor -1, which does nothing otherwise.
 *
 * Debian ships qemu with its plugin interface, version 1, but without the header, so what is used of it stands here.
 */
#include <inttypes.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#define EXPORTED __attribute__((visibility("default")))

typedef uint64_t PluginId;
struct qemu_plugin_tb; /* a run of instructions that are executed one after the other */

extern size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
extern void qemu_plugin_register_vcpu_tb_trans_cb(PluginId id, void (*call)(PluginId, struct qemu_plugin_tb*));
extern void qemu_plugin_register_vcpu_tb_exec_inline(
    struct qemu_plugin_tb* block, int operation, void* counter, uint64_t amount);
extern void qemu_plugin_register_vcpu_syscall_cb(PluginId id,
    void (*call)(PluginId, unsigned int, int64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t,
        uint64_t));

enum { PLUGIN_VERSION = 1, ADD = 0, SYSTEM_CALL_WRITE = 4 /* on ARM */ };

EXPORTED int qemu_plugin_version = PLUGIN_VERSION;

static uint64_t executed;
static uint64_t executedAtMark;
static bool isMarked;

/* Instructions are counted when their run begins; a system call ends a run, so marks lie between runs. */
static void CountBlock(PluginId id, struct qemu_plugin_tb* block)
{
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, ADD, &executed, qemu_plugin_tb_n_insns(block));
}

static void LookAtCall(PluginId id, unsigned int processor, int64_t number, uint64_t first, uint64_t second,
    uint64_t third, uint64_t fourth, uint64_t fifth, uint64_t sixth, uint64_t seventh, uint64_t eighth)
{
    (void)id, (void)processor, (void)second, (void)third, (void)fourth, (void)fifth, (void)sixth, (void)seventh,
        (void)eighth;
    if (number != SYSTEM_CALL_WRITE || (int32_t)first != -1) {
        return;
    }
    if (isMarked) {
        fprintf(stderr, "instructions %" PRIu64 "\n", executed - executedAtMark);
    }
    isMarked = !isMarked;
    executedAtMark = executed;
}

EXPORTED int qemu_plugin_install(PluginId id, const void* info, int count, char** arguments)
{
    (void)info, (void)count, (void)arguments;
    qemu_plugin_register_vcpu_tb_trans_cb(id, CountBlock);
    qemu_plugin_register_vcpu_syscall_cb(id, LookAtCall);
    return 0;
}
