#!/bin/sh
# Makes the ELF files of this folder and what others find in them, by binutils for each target
# (Debian's binutils-arm-none-eabi, -aarch64-linux-gnu, -avr, -riscv64-unknown-elf, -mips-linux-gnu,
# -mips64el-linux-gnuabi64, -powerpc-linux-gnu, -powerpc64-linux-gnu, -m68k-linux-gnu).
#   NAME.elf   the file
#   NAME.srec  its sections by objcopy, at their load addresses
#   NAME.nm    address and name of its symbols by nm, and "entry" with the address by readelf
set -eu
cd "$(dirname "$0")"

cat >/tmp/elf-source.s <<'END'
    .section .vectors, "a"
    .global vectors
    .type vectors, %object
    .size vectors, 8
vectors:
    .byte 1, 2, 3, 4, 5, 6, 7, 8
    .section .text
    .global start
    .type start, %function
    .size start, 12
start:
    .byte 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C
    .section .data
    .global settings
    .type settings, %object
    .size settings, 4
settings:
    .byte 0x21, 0x22, 0x23, 0x24
    .section .bss
    .global counters
    .type counters, %object
    .size counters, 32
counters:
    .skip 32
END
# Code and the first values of the data in flash, the data itself in memory.
cat >/tmp/elf-script.ld <<'END'
ENTRY(start)
MEMORY { flash : ORIGIN = 0x8000, LENGTH = 0x1000
         memory : ORIGIN = 0x20000, LENGTH = 0x1000 }
PHDRS { code PT_LOAD; data PT_LOAD; }
SECTIONS {
    .vectors : { *(.vectors) } >flash :code
    .text 0x8020 : { *(.text) } >flash :code
    .data : { *(.data) } >memory AT>flash :data
    .bss : { *(.bss) } >memory :data
    /DISCARD/ : { *(*) }
}
END

# make NAME PREFIX LINKER-OPTIONS ASSEMBLER-OPTIONS LINKER-SCRIPT
make() {
    "$2"as $4 -o /tmp/elf.o /tmp/elf-source.s
    "$2"ld $3 -z max-page-size=256 ${5:+-T "$5"} -o "$1.elf" /tmp/elf.o 2>/dev/null
    "$2"objcopy -O srec --srec-forceS3 "$1.elf" "$1.srec"
    "$2"nm "$1.elf" | sed -n 's/^\([0-9a-f]*\) [A-Za-z] \(.*\)/\1 \2/p' >"$1.nm"
    "$2"readelf -h "$1.elf" | sed -n 's/.*Entry point address: *0x\(.*\)/\1 entry/p' >>"$1.nm"
}

script=/tmp/elf-script.ld
make arm arm-none-eabi- "-EL" "-EL" $script
make armeb arm-none-eabi- "-EB" "-EB" $script
make aarch64 aarch64-linux-gnu- "-EL" "-EL" $script
make aarch64be aarch64-linux-gnu- "-EB -m aarch64linuxb" "-EB" $script
make riscv32 riscv64-unknown-elf- "-m elf32lriscv" "-march=rv32i -mabi=ilp32" $script
make riscv64 riscv64-unknown-elf- "" "" $script
make mips mips-linux-gnu- "" "-mabi=32" $script
make mips64el mips64el-linux-gnuabi64- "" "" $script
make powerpc powerpc-linux-gnu- "" "" $script
make powerpc64 powerpc64-linux-gnu- "" "" $script
make m68k m68k-linux-gnu- "" "" $script
make i386 "" "-m elf_i386" "--32" $script
make x86-64 "" "-m elf_x86_64" "--64" $script
make avr avr- "-m avr5 " "-mmcu=avr5" ""
# The layout of a linker without a script: the first segment begins with the headers of the file.
make headers arm-none-eabi- "-e start -Ttext=0x10100 -Tdata=0x20000" "-EL" ""
make headers64 aarch64-linux-gnu- "-e start" "-EL" ""
