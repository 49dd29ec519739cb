#!/usr/bin/env bash
# Tests scripts/check-library with libraries that are linked as for a device: with start files, the
# device's library names and packed relocations. One for each architecture variant must be accepted.
# Spoiled ones must be refused, each for its own reason.
#
# Links the objects of the preset arm64.
set -euo pipefail
cd "$(dirname "$0")/.."
objects=(build/arm64/src/CMakeFiles/cadrova_objects.dir/*/*.o)
[[ -f ${objects[0]} ]] || { echo "$0: no objects; make them with: make build PRESET=arm64" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
library=$work/libcadrova_cpp.so

compile() {  # NAME FLAG... <SOURCE
  clang-19 --target=aarch64-linux-android34 -O2 -fPIC -fvisibility=hidden -Qunused-arguments -c -o "$work/$1.o" "${@:2}" -
}
link() {  # FLAG-OR-FILE...
  ld.lld-19 -shared -o "$library" "${objects[@]}" -soname libcadrova_cpp.so \
    --version-script src/exports.map -z relro -z now --gc-sections \
    --icf=safe --eh-frame-hdr --pack-dyn-relocs=android+relr -L"$work" "$@" -lbase -lcadrova_ffi -lc++
}
link_for_device() { link "$work/$1.o" -lc -lm -ldl "${@:2}"; }  # VARIANT FLAG-OR-FILE...

check() {  # STATUS
  local status=0
  scripts/check-library "$library" >"$work/output" 2>&1 || status=$?
  [[ $status == "$1" ]] || fail "the exit status is $status instead of $1"
}
fail() {
  printf '%s\n' "$description: $1; the output is:" >&2
  cat "$work/output" >&2
  exit 1
}
refused() {  # REASON
  description="a library that $1"
  check 1
  grep -qxF "$library: $1" "$work/output" || fail "that is not said"
}
# A library that is spoiled by other flags, or by more code.
refuse() { link_for_device armv9-a "${@:2}"; refused "$1"; }  # REASON FLAG-OR-FILE...
refuse_code() {  # REASON SOURCE FLAG...
  compile more -x c++ "$protected" <<<"$2"
  refuse "$1" "$work/more.o" "${@:3}"
}

# The device's libraries, each with all functions that the library imports.
sed -nE 's/^(\? )?([A-Za-z_][A-Za-z0-9_]*)$/.global \2\n\2:/p' abi/imports.txt | compile imports -x assembler
for name in base cadrova_ffi c++ c m dl log; do
  ld.lld-19 -shared -soname "lib$name.so" -o "$work/lib$name.so" "$work/imports.o"
done
ld.lld-19 -shared -soname libc.so.6 -o "$work/libglibc.so" "$work/imports.o"

# Like the platform's start files, which are marked for branch protection in some variants only.
protected=-mbranch-protection=standard
while read -r variant notes flags; do
  # shellcheck disable=SC2086  # several flags
  compile "$variant" -x c $flags <<'END'
void __cxa_finalize(void*);
void* const __dso_handle = (void*)&__dso_handle;
#ifdef PADDED
__asm__(".pushsection .data.rel.ro, \"aw\"\n.zero 8\n.popsection");
#endif
__attribute__((destructor)) void __on_dlclose(void) { __cxa_finalize((void*)&__dso_handle); }
__attribute__((destructor(0))) void __on_dlclose_late(void) {}
END
  for stripped in no yes; do
    description="a library for $variant, stripped: $stripped"
    link_for_device "$variant"
    [[ $stripped == no ]] || llvm-strip-19 "$library"
    check 0
    [[ $(wc -l <"$work/output") == "$notes" ]] || fail "it does not have $notes notes"
    [[ $notes == 0 ]] || grep -q ': note: .* armv8-a, armv8-2a and armv8-2a-dotprod, ' "$work/output" || fail "another note"
  done
done <<END
armv8-a            1 -march=armv8-a
armv8-2a           1 -march=armv8.2-a -DPADDED
armv8-2a-dotprod   1 -march=armv8.2-a+dotprod
armv8-a-branchprot 0 -march=armv8-a $protected
armv9-a            0 -march=armv9-a $protected -DPADDED
END
description="a library that uses libc++ 16, and start files that use all of their imports"
compile more -x c "$protected" <<<'void abort(void), __cxa_atexit(void), __register_atfork(void);
__attribute__((used, retain)) static void Use(void) { abort(); __cxa_atexit(); __register_atfork(); }'
link_for_device armv9-a "$work/more.o"
check 0

refuse_code "exports android::getExtraFeature(), which abi/exports.txt does not list" \
  'namespace android { [[gnu::visibility("default")]] void getExtraFeature() {} }'
name=$(grep setSimCadrova abi/exports.txt)
refuse "does not export $(c++filt "$name")" --version-script <(echo "{ local: $name; };")
refuse_code "imports std::terminate(), which abi/imports.txt does not list" \
  'namespace std { void terminate(); } [[gnu::used, gnu::retain]] void Use() { std::terminate(); }'
refuse_code "has a section .bss of 4 bytes, which contains count" '[[gnu::used, gnu::retain]] int count;'
refuse_code "has a section .data of 4 bytes, which contains count" '[[gnu::used, gnu::retain]] int count = 1;'
refuse_code "has a section .tbss of 4 bytes, which contains count" '[[gnu::used, gnu::retain]] thread_local int count;'
refuse_code "has a section .my data of 4 bytes, which contains count" \
  '[[gnu::used, gnu::retain, gnu::section(".my data")]] int count = 1;'
refuse_code "has a section .init_array of 8 bytes" '[[gnu::constructor]] void Start() { asm(""); }'
refuse_code "has a section .fini_array of 24 bytes" '[[gnu::destructor]] void End() { asm(""); }'
for flag in -init -fini; do
  refuse_code "has code that runs when it is loaded or unloaded" 'extern "C" void Run() {}' "$flag=Run"
done
refuse_code "has a section .data.rel.ro of 20 bytes, which contains __dso_handle, four" \
  '[[gnu::used, gnu::retain, gnu::section(".data.rel.ro")]] extern const int four = 4;'
llvm-strip-19 "$library"
refused "has a section .data.rel.ro of 20 bytes"
refuse_code "has a section .data.rel.ro of 24 bytes, which contains __dso_handle, pointer" \
  'extern "C" void free(void*); [[gnu::used, gnu::retain]] extern void (*const pointer)(void*) = free;'
llvm-strip-19 "$library"
refused "has 4 relocations other than those of its imports, instead of 3"
link_for_device armv8-a-branchprot "$work/more.o"
refused "has a section .data.rel.ro of 16 bytes, which contains __dso_handle, pointer"
refuse_code "has text relocations" '[[gnu::used, gnu::retain]] void Use() { asm(".xword free"); }' -z notext
refuse "has a segment that is writable and executable" --omagic -Bdynamic
refuse "has no RELRO segment" -z norelro
refuse "binds lazily, so that RELRO is only partial" -z lazy
refuse "does not request a non-executable stack" -z execstack
for tags in enable disable; do
  refuse "has a run path, which libraries on a device do not have" -rpath /system/lib64 --"$tags"-new-dtags
done
refuse "run path ':/system' has an empty entry, which means the current folder" -rpath :/system
refuse "has a SONAME other than libcadrova_cpp.so" -soname libother.so
refuse "needs liblog.so" -llog
refuse "needs libc.so.6" -lglibc
for name in base cadrova_ffi c++; do refuse "does not need lib$name.so" --as-needed; done
refuse "has no stack protector" --defsym=__stack_chk_fail=0
refuse "does not import free" --defsym=free=0
refuse "has no unwind tables for some functions" --no-eh-frame-hdr
for name in __on_dlclose __on_dlclose_late; do
  llvm-objcopy-19 --redefine-sym "$name=End" "$work/armv9-a.o" "$work/other.o"
  link_for_device other
  refused "does not contain $name, which start files bring"
done
link -lc -lm -ldl
refused "has 0 relocations other than those of its imports, instead of 3"
# An object file of ours that is not marked, or only for signed return addresses. Without start files,
# as CMake links it, and with them.
unprotected="has no branch protection; compile all of it with -mbranch-protection=standard"
compile more -x c <<<'__attribute__((used, retain)) static void Use(void) {}'
link -lglibc "$work/more.o"
refused "$unprotected"
compile more -x c -mbranch-protection=pac-ret <<<'__attribute__((used, retain)) static void Use(void) {}'
refuse "$unprotected" "$work/more.o"
link_for_device armv8-a
LC_ALL=C sed -i 's/\x3f\x23\x03\xd5/\x1f\x20\x03\xd5/' "$library"  # nop instead of paciasp, once per line
refused "$unprotected"
echo "All libraries were judged as expected."
