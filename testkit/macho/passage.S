# The passage out of a bundle; passages.h says what it is for. Entered by a jump, as the function
# that the bundle has called, with the function to call in %eax.
#
# A frame copies the arguments, as many words of them as there can be, and calls. Its exception table
# is the one that a compiler makes for "@try { call } @catch (id exception) { throw to the frame }".
# The result stays where it came back: %eax, %edx, or the floating-point stack.

    .set argumentWords, 64

# passage NAME: \result runs after the call, \pop is how much of the arguments the caller has left to
# it.
.macro passage name, pop, result:vararg
    .globl \name
    .hidden \name
    .type \name, @function
\name:
    .cfi_startproc
    .cfi_personality 0x9b, DW.ref.__gnu_objc_personality_v0
    .cfi_lsda 0x1b, .Ltable_\name
    pushl %ebp
    .cfi_def_cfa_offset 8
    .cfi_offset %ebp, -8
    movl %esp, %ebp
    .cfi_def_cfa_register %ebp
    pushl %esi
    .cfi_offset %esi, -12
    pushl %edi
    .cfi_offset %edi, -16
    subl $(4 * argumentWords), %esp
    andl $-16, %esp
    leal 8(%ebp), %esi
    movl %esp, %edi
    movl $argumentWords, %ecx
    cld
    rep movsl
.Lcall_\name:
    call *%eax
.Lreturn_\name:
    .cfi_remember_state
    \result
    leal -8(%ebp), %esp
    popl %edi
    .cfi_restore %edi
    popl %esi
    .cfi_restore %esi
    popl %ebp
    .cfi_restore %ebp
    .cfi_def_cfa %esp, 4
    ret $\pop
.Lcatch_\name:
    .cfi_restore_state
    subl $12, %esp
    pushl %eax
    call testkitThrowToFrame
    .cfi_endproc
    .size \name, . - \name

    .pushsection .gcc_except_table, "a", @progbits
    .align 4
.Ltable_\name:
    .byte 0xff                                  # landing pads count from the function
    .byte 0x9b
    .uleb128 .Ltypes_\name - .Ltypesize_\name
.Ltypesize_\name:
    .byte 0x01
    .uleb128 .Lactions_\name - .Lcalls_\name
.Lcalls_\name:
    .uleb128 .Lcall_\name - \name
    .uleb128 .Lreturn_\name - .Lcall_\name
    .uleb128 .Lcatch_\name - \name
    .uleb128 1                                  # the first action
.Lactions_\name:
    .byte 1                                     # takes the first type
    .byte 0                                     # and that is all
    .align 4
    .long 0                                     # the first type: any object
.Ltypes_\name:
    .popsection
.endm

    .hidden testkitThrowToFrame
    .text
    passage testkitPassage, 0
    # The first argument is the address for the structure: it comes back, and is popped.
    passage testkitPassageForStructure, 4, movl 8(%ebp), %eax

    .hidden DW.ref.__gnu_objc_personality_v0
    .weak DW.ref.__gnu_objc_personality_v0
    .section .data.rel.local.DW.ref.__gnu_objc_personality_v0, "awG", @progbits, DW.ref.__gnu_objc_personality_v0, comdat
    .align 4
    .type DW.ref.__gnu_objc_personality_v0, @object
    .size DW.ref.__gnu_objc_personality_v0, 4
DW.ref.__gnu_objc_personality_v0:
    .long __gnu_objc_personality_v0
    .section .note.GNU-stack, "", @progbits
