# An image with the two programs, the recipes and nothing else: they are static and need no system.
#   docker build --tag tessaron .
#   docker run --rm --user "$(id -u)" --volume "$PWD:/work" tessaron run script.tsn
FROM debian:12-slim AS build
COPY . /tessaron
WORKDIR /tessaron
RUN scripts/setup.sh container
RUN cmake --preset release -DCMAKE_INSTALL_PREFIX=/usr \
    && cmake --build --preset release \
    && DESTDIR=/installed cmake --install build/release --strip \
    && mkdir -p /image/usr/share/cmdtessaron /image/work \
    && cp -r /installed/usr/bin /image/usr/ \
    && cp -r /installed/usr/share/cmdtessaron/recipes /image/usr/share/cmdtessaron/ \
    && cp -r /installed/usr/share/doc/cmdtessaron/copyright /image/usr/share/cmdtessaron/

FROM scratch
COPY --from=build /image/ /
ENV LANG=C.UTF-8
WORKDIR /work
ENTRYPOINT ["/usr/bin/tessaron"]
