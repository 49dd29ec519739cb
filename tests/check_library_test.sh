#!/usr/bin/env bash
# Tests scripts/check-library with libraries that are linked as for a device: with start files, the
# device's library names and packed relocations. One for each architecture variant must be accepted.
# Spoiled ones must be refused, each for its own reason.
#
# Links the objects of the preset arm64, which must be built.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
library=$work/libcadrova_cpp.so

compile() {  # NAME FLAG... <SOURCE
  clang-19 --target=aarch64-linux-android34 -O2 -fPIC -fvisibility=hidden -Qunused-arguments -c -o "$work/$1.o" "${@:2}" -
}
link() {  # FLAG-OR-FILE...
  ld.lld-19 -shared -o "$library" build/arm64/src/CMakeFiles/cadrova_objects.dir/*/*.o \
    -soname libcadrova_cpp.so --version-script src/exports.map -z relro -z now --gc-sections \
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
__asm__(".pushsection .data.rel.ro, \"aw\"\n.zero 8\n.popsection");
__attribute__((destructor)) void __on_dlclose(void) { __cxa_finalize((void*)&__dso_handle); }
__attribute__((destructor(0))) void __on_dlclose_late(void) {}
END
  for stripped in no yes; do
    description="a library for $variant, stripped: $stripped"
    link_for_device "$variant"
    [[ $stripped == no ]] || llvm-strip-19 "$library"
    check 0
    [[ $(wc -l <"$work/output") == "$notes" ]] || fail "it does not have $notes notes"
    [[ $notes == 0 ]] || grep -q ': note: .* armv8-a, armv8-2a and armv8-2a-dotprod ' "$work/output" || fail "another note"
  done
done <<END
armv8-a            1 -march=armv8-a
armv8-2a           1 -march=armv8.2-a
armv8-2a-dotprod   1 -march=armv8.2-a+dotprod
armv8-a-branchprot 0 -march=armv8-a $protected
armv9-a            0 -march=armv9-a $protected
END

refuse_code "exports android::getExtraFeature(), which abi/exports.txt does not list" \
  'namespace android { [[gnu::visibility("default")]] void getExtraFeature() {} }'
name=$(grep setSimCadrova abi/exports.txt)
refuse "does not export $(c++filt "$name")" --version-script <(echo "{ local: $name; };")
refuse_code "imports std::terminate(), which abi/imports.txt does not list" \
  'namespace std { void terminate(); } [[gnu::used, gnu::retain]] void Use() { std::terminate(); }'
refuse_code "has a section .bss of 4 bytes, which contains count" '[[gnu::used, gnu::retain]] int count;'
refuse_code "has a section .data of 4 bytes, which contains count" '[[gnu::used, gnu::retain]] int count = 1;'
refuse_code "has a section .tbss of 4 bytes, which contains count" '[[gnu::used, gnu::retain]] thread_local int count;'
refuse_code "has a section .init_array of 8 bytes" '[[gnu::constructor]] void Start() { asm(""); }'
refuse_code "has a section .fini_array of 24 bytes" '[[gnu::destructor]] void End() { asm(""); }'
refuse_code "has a section .data.rel.ro of 24 bytes, which contains __dso_handle, name" \
  '[[gnu::used, gnu::retain]] extern const char* const name = "x";'
llvm-strip-19 "$library"
refused "has 4 relocations other than those of its imports, instead of 3"
refuse_code "has text relocations" '[[gnu::used, gnu::retain]] void Use() { asm(".xword free"); }' -z notext
refuse "has a segment that is writable and executable" --omagic -Bdynamic
refuse "has no RELRO segment" -z norelro
refuse "binds lazily, so that RELRO is only partial" -z lazy
refuse "requests an executable stack" -z execstack
refuse "has a run path, which libraries on a device do not have" -rpath /system/lib64
refuse "has a SONAME other than libcadrova_cpp.so" -soname libother.so
refuse "needs liblog.so" -llog
refuse "does not need libc++.so" --as-needed
refuse "has no stack protector" --defsym=__stack_chk_fail=0
refuse "does not import free" --defsym=free=0
link_for_device armv9-a
LC_ALL=C sed -i 's/\x3f\x23\x03\xd5/\x1f\x20\x03\xd5/g' "$library"  # nop instead of paciasp
refused "has no instructions for branch protection; compile it with -mbranch-protection=standard"
link_for_device armv9-a
llvm-objcopy-19 --remove-section .eh_frame "$library"
refused "has no unwind tables"
llvm-objcopy-19 --redefine-sym __on_dlclose=End "$work/armv9-a.o" "$work/other.o"
link_for_device other
refused "does not contain __on_dlclose, which start files bring"
link -lc -lm -ldl
refused "has 0 relocations other than those of its imports, instead of 3"
# Without start files, which CMake does not link, the mark depends on our own object files only.
compile unmarked -x c <<<'__attribute__((used, retain)) static void Use(void) {}'
link -lglibc "$work/unmarked.o"
refused "is not marked for branch protection"
echo "All libraries were judged as expected."
