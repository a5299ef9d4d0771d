@ int switch8_probe(int index): a dense switch as compiled code lays it out for __rt_switch8,
@ three cases and a default. Each case returns r1 + r2 + its own number, so a dispatcher that
@ clobbers r1 or r2 shows in the result.
	.syntax unified
	.thumb
	.text
	.global switch8_probe
	.type switch8_probe, %function
	.thumb_func
	.p2align 2
switch8_probe:
	push	{r4, lr}
	movw	r1, #1000
	movw	r2, #20000
	bl	__rt_switch8
.Ltable:
	.byte	3
	.byte	(.Lcase0 - .Ltable) / 2, (.Lcase1 - .Ltable) / 2, (.Lcase2 - .Ltable) / 2
	.byte	(.Ldefault - .Ltable) / 2
	.p2align 1
.Lcase0:
	adds	r0, r1, r2
	pop	{r4, pc}
.Lcase1:
	adds	r0, r1, r2
	adds	r0, r0, #1
	pop	{r4, pc}
.Lcase2:
	adds	r0, r1, r2
	adds	r0, r0, #2
	pop	{r4, pc}
.Ldefault:
	adds	r0, r1, r2
	adds	r0, r0, #99
	pop	{r4, pc}
	.size switch8_probe, . - switch8_probe
	.section .note.GNU-stack,"",%progbits
