@ Fill. The EABI entries take (destination, count, value), count before value; `_memset` and
@ `_memset_w` take the value already replicated into a pattern word. The bulk stores 32 bytes
@ per STM, four per loop turn. The ISO memset (library-internal) swaps its arguments and keeps
@ the destination for its result.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	.p2align 2
entry memset, hidden
	push	{r0, lr}
	mov	r3, r1
	mov	r1, r2
	mov	r2, r3
	bl	__aeabi_memset
	pop	{r0, pc}
	.size memset, . - memset

entry __kv_mem_fill, hidden
	push	{r0, lr}
	bl	__aeabi_memset
	pop	{r0, pc}
	.size __kv_mem_fill, . - __kv_mem_fill

	.p2align 2
entry __aeabi_memclr, protected
entry __rt_memclr, protected
	movs	r2, #0
	b	_memset
	.size __rt_memclr, . - __rt_memclr
	.size __aeabi_memclr, . - __aeabi_memclr

entry __aeabi_memclr4, protected
entry __aeabi_memclr8, protected
entry __rt_memclr_w, protected
	movs	r2, #0
	b	_memset_w
	.size __rt_memclr_w, . - __rt_memclr_w
	.size __aeabi_memclr4, . - __aeabi_memclr4
	.size __aeabi_memclr8, . - __aeabi_memclr8

entry __aeabi_memset4, protected
entry __aeabi_memset8, protected
	uxtb	r2, r2
	orr	r2, r2, r2, lsl #8
	orr	r2, r2, r2, lsl #16
	b	_memset_w
	.size __aeabi_memset4, . - __aeabi_memset4
	.size __aeabi_memset8, . - __aeabi_memset8

	.p2align 2
entry __aeabi_memset, protected
	uxtb	r2, r2
	orr	r2, r2, r2, lsl #8
	orr	r2, r2, r2, lsl #16
	@ fall through
entry _memset, protected
	@ r0 = destination, r1 = count, r2 = pattern word, any alignment.
	cmp	r1, #4
	blo	.Lbytes
	ands	r3, r0, #3
	beq	_memset_w
	rsb	r3, r3, #4
	sub	r1, r1, r3
	lsls	r3, r3, #31		@ N = one byte, C = two bytes
	it	mi
	strbmi	r2, [r0], #1
	it	cs
	strhcs	r2, [r0], #2
	@ fall through
entry _memset_w, protected
	@ r0 word-aligned.
	subs	r1, r1, #32
	blo	3f
	push	{r4-r9}
	mov	r3, r2
	mov	r4, r2
	mov	r5, r2
	mov	r6, r2
	mov	r7, r2
	mov	r8, r2
	mov	r9, r2
	subs	r1, r1, #96		@ count - 128
	blo	2f
1:	stmia	r0!, {r2-r9}
	stmia	r0!, {r2-r9}
	stmia	r0!, {r2-r9}
	stmia	r0!, {r2-r9}
	subs	r1, r1, #128
	bhs	1b
2:	lsls	r12, r1, #26		@ C = 64, N = 32
	itt	cs
	stmiacs	r0!, {r2-r9}
	stmiacs	r0!, {r2-r9}
	it	mi
	stmiami	r0!, {r2-r9}
	lsls	r12, r1, #28		@ C = 16, N = 8
	it	cs
	stmiacs	r0!, {r2-r5}
	it	mi
	stmiami	r0!, {r2, r3}
	pop	{r4-r9}
	b	4f
3:	mov	r3, r2
	lsls	r12, r1, #28		@ C = 16, N = 8
	itt	cs
	stmiacs	r0!, {r2, r3}
	stmiacs	r0!, {r2, r3}
	it	mi
	stmiami	r0!, {r2, r3}
4:	lsls	r12, r1, #30		@ C = 4, N = 2
	it	cs
	strcs	r2, [r0], #4
	it	mi
	strhmi	r2, [r0], #2
	tst	r1, #1
	it	ne
	strbne	r2, [r0]
	bx	lr

.Lbytes:
	cbz	r1, 2f
1:	strb	r2, [r0], #1
	subs	r1, r1, #1
	bne	1b
2:	bx	lr
	.size _memset_w, . - _memset_w
	.size _memset, . - _memset
	.size __aeabi_memset, . - __aeabi_memset

	.section .note.GNU-stack,"",%progbits
