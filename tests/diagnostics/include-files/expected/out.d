out.bin out.json: \
  release.tsn \
  parts/store.tsn \
  parts/write.tsn \
  app.bin
