# Makes 32-bit assembly reach everything outside of its file in ways that the linker gets right.
#
#   awk -v imports=imports.txt -f indirect_imports.awk INPUT >OUTPUT
#
# The linker's own ways aren't usable: its stubs for imported functions only work where the bundle
# was linked for, and the pointers that the compiler has it fill in stay zero. So
#
#  - a call of an import goes to a routine of the file's own, which finds its own place and jumps
#    through a plain pointer in writable data;
#  - the compiler's pointers to data of other files become plain pointers in writable data. They get
#    names that the linker keeps: it loses the offsets of unnamed ones.
BEGIN {
  while ((status = (getline line < imports)) > 0) {
    if (line ~ /^\[/) section = line
    else if (section ~ /^\[symbols/ && split(line, word) >= 3 && word[1] !~ /^#/) isImport[word[3]] = 1
  }
  if (status < 0) fail("can't read the list of imports, '" imports "'")
}

function fail(text) {
  print "indirect_imports.awk: " text > "/dev/stderr"
  failed = 1
  exit 1
}

# Where a file has both, the linker mistakes one symbol for its neighbour.
$1 == ".private_extern" { fail("a hidden symbol beside visible ones: " $2) }

{ gsub(/L_[^ \t,()+-]*\$non_lazy_ptr/, "l&") }

/^[ \t]*\.section[ \t]+__IMPORT,__pointers/ {
  print "\t.section\t__DATA,__pointers\n\t.p2align\t2"
  next
}

# The pointer's value follows: the linker's to fill in, and so zero.
$1 == ".indirect_symbol" {
  symbol = $2
  if ((getline) <= 0 || $1 != ".long" || $2 != "0") fail("a pointer without its zero: " symbol)
  print "\t.long\t" symbol
  next
}

($1 == "calll" || $1 ~ /^j[a-z]+$/) && $2 in isImport {
  if (!($2 in called)) {
    called[$2] = 1
    order[++count] = $2
  }
  sub($2, "l_call" $2)
  print
  next
}

# It has to be the last line.
$1 == ".subsections_via_symbols" { last = $0; next }

{ print }

END {
  if (failed) exit 1
  for (i = 1; i <= count; ++i) {
    name = order[i]
    print "\t.section\t__TEXT,__text,regular,pure_instructions\n\t.p2align\t4, 0x90"
    print "l_call" name ":\n\tcalll\tL_here" name "\nL_here" name ":\n\tpopl\t%eax"
    print "\tmovl\tl_import" name "-L_here" name "(%eax), %eax\n\tjmpl\t*%eax"
    print "\t.section\t__DATA,__pointers\n\t.p2align\t2\nl_import" name ":\n\t.long\t" name
  }
  if (last != "") print last
}
