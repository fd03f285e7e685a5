/*
 * stubs.S - the exported names, their slots, and the load-time entry.
 *
 * Every exported symbol is one indirect jump through its slot: no frame, no
 * argument touched, so the variant sees the caller's arguments and return
 * address unchanged and returns straight to the caller.  The slots are one
 * word per export, zero until the load-time dispatch fills them, laid out in
 * dispatch order between omnSlotTableBegin and omnSlotTableEnd.
 *
 * Both are expanded from the export list by the C preprocessor.
 */
#define OMN_EXPORT(ret, name, params)        OMN_STUB(name)
#define OMN_EXPORT_COMMON(ret, name, params) OMN_STUB(name)

#if defined(__x86_64__)

#define OMN_STUB(name) \
    .globl name; .type name, @function; .p2align 3; \
    name: jmp *omnSlot_##name(%rip); .size name, . - name;

#elif defined(__aarch64__)

#define OMN_STUB(name) \
    .globl name; .type name, %function; .p2align 3; \
    name: adrp x16, omnSlot_##name; ldr x16, [x16, :lo12:omnSlot_##name]; br x16; \
    .size name, . - name;

#else
#error "no forwarding stub for this target"
#endif

    .text
#include "omns_exports.h"

#undef OMN_STUB
#define OMN_STUB(name) \
    .globl omnSlot_##name; .hidden omnSlot_##name; .type omnSlot_##name, %object; \
    .size omnSlot_##name, 8; omnSlot_##name: .quad 0;

/* The slots fill whole pages of their own, so that once dispatch has
   written them they can be made read-only without touching anything else. */
    .section .bss.omn_slots, "aw", %nobits
    .p2align 12
    .globl omnSlotTableBegin; .hidden omnSlotTableBegin
omnSlotTableBegin:
#include "omns_exports.h"
    .globl omnSlotTableEnd; .hidden omnSlotTableEnd
omnSlotTableEnd:
    .p2align 12

/* The load-time entry is an ELF constructor.  It is registered here, beside
   the slots, so that any program that links an export (statically too) also
   links the code that fills the slots. */
    .section .init_array, "aw"
    .p2align 3
    .quad omnLibraryConstructor

    .section .note.GNU-stack, "", %progbits
