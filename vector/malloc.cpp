/*
 * malloc.cpp - the typed aligned allocators.  They only name an element
 * size: the layout, the modulo-2^32 byte count and the test seam are the
 * frame's (core/alloc.cpp), so that omnsFree takes back a block from any
 * column and any allocator of the library.
 */
#include "core/column.h"
#include "core/alloc.h"

OMN_COLUMN_BEGIN

Omn32s* omnsMalloc_32s(int len)   { return static_cast<Omn32s*>(omnAllocElements(len, sizeof(Omn32s))); }
Omn64f* omnsMalloc_64f(int len)   { return static_cast<Omn64f*>(omnAllocElements(len, sizeof(Omn64f))); }
Omn32sc* omnsMalloc_32sc(int len) { return static_cast<Omn32sc*>(omnAllocElements(len, sizeof(Omn32sc))); }
Omn64fc* omnsMalloc_64fc(int len) { return static_cast<Omn64fc*>(omnAllocElements(len, sizeof(Omn64fc))); }

OMN_COLUMN_END
