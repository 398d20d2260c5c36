# The passages out of a bundle and into it; passages.h says what they are for. They are entered by a
# jump, as the function that was called, with the function to call in %eax. The result stays where it
# came back: %eax, %edx, or the floating-point stack.

    .set argumentWords, 64

# Makes room on the aligned stack for as many words of arguments as there can be, and copies them from
# the address in %esi.
.macro copyArguments
    subl $(4 * argumentWords), %esp
    andl $-16, %esp
    movl %esp, %edi
    movl $argumentWords, %ecx
    cld
    rep movsl
.endm

# passage NAME: out of a bundle. \result runs after the call, \pop is how much of the arguments the
# caller has left to it. Its exception table is the one that a compiler makes for
# "@try { call } @catch (id exception) { throw to the frame }".
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
    leal 8(%ebp), %esi
    copyArguments
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
    call machoThrowToFrame
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

    .hidden machoThrowToFrame
    .text
    passage machoPassage, 0
    # The first argument is the address for the structure: it comes back, and is popped.
    passage machoPassageForStructure, 4, movl 8(%ebp), %eax

# The passage into a bundle. machoEnterBundle gets the address of a record: the function, the
# address of the arguments, and room for what comes back in %eax and %edx; it calls back
# machoCallAsRecorded, with a frame around it.
    .hidden machoEnterBundle
    .globl machoPassageInward
    .hidden machoPassageInward
    .type machoPassageInward, @function
machoPassageInward:
    .cfi_startproc
    pushl %ebp
    .cfi_def_cfa_offset 8
    .cfi_offset %ebp, -8
    movl %esp, %ebp
    .cfi_def_cfa_register %ebp
    subl $24, %esp
    movl %eax, -16(%ebp)
    leal 8(%ebp), %eax
    movl %eax, -12(%ebp)
    leal -16(%ebp), %eax
    movl %eax, (%esp)
    call machoEnterBundle
    movl -8(%ebp), %eax
    movl -4(%ebp), %edx
    leave
    .cfi_restore %ebp
    .cfi_def_cfa %esp, 4
    ret
    .cfi_endproc
    .size machoPassageInward, . - machoPassageInward

# Takes the record. Nothing unwinds from here: what the function calls jumps over it.
    .globl machoCallAsRecorded
    .hidden machoCallAsRecorded
    .type machoCallAsRecorded, @function
machoCallAsRecorded:
    pushl %ebp
    movl %esp, %ebp
    pushl %esi
    pushl %edi
    movl 8(%ebp), %eax
    movl 4(%eax), %esi
    copyArguments
    call *(%eax)
    movl 8(%ebp), %ecx
    movl %eax, 8(%ecx)
    movl %edx, 12(%ecx)
    leal -8(%ebp), %esp
    popl %edi
    popl %esi
    popl %ebp
    ret
    .size machoCallAsRecorded, . - machoCallAsRecorded

    .hidden DW.ref.__gnu_objc_personality_v0
    .weak DW.ref.__gnu_objc_personality_v0
    .section .data.rel.local.DW.ref.__gnu_objc_personality_v0, "awG", @progbits, DW.ref.__gnu_objc_personality_v0, comdat
    .align 4
    .type DW.ref.__gnu_objc_personality_v0, @object
    .size DW.ref.__gnu_objc_personality_v0, 4
DW.ref.__gnu_objc_personality_v0:
    .long __gnu_objc_personality_v0
    .section .note.GNU-stack, "", @progbits
