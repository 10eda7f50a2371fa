out\ put.bin: \
  script.tsn \
  in\ put\#$$.bin
