// Opens the book from a disk in a browser, at three widths, in light and dark, and prints what is wrong:
//   node visit_book.js CHROMIUM HTML FOLDER
// Pictures go to FOLDER. Nothing may be loaded from a network; the search has to find a page.
"use strict";
const path = require("path");
const {chromium} = require(path.resolve("node_modules/playwright-core"));
const [executablePath, html, folder] = process.argv.slice(2);
const pages = ["index", "statements/new-buffer", "checksums/catalogue", "looking/report",
               "classic/messages"];
// On a machine that is busy, a page takes long.
const patience = 120000;

async function visit(context, name, faults) {
  const page = await context.newPage();
  page.setDefaultTimeout(patience);
  page.on("pageerror", (error) => faults.push(`${name}: ${error}`));
  page.on("request", (request) => {
    if (!/^(file|blob|data):/.test(request.url())) faults.push(`${name} loads ${request.url()}`);
  });
  for (const one of pages) {
    await page.goto(`file://${path.resolve(html)}/${one}.html`);
    const wide = await page.evaluate(
        () => document.documentElement.scrollWidth - document.documentElement.clientWidth);
    if (wide > 1) faults.push(`${name}: ${one} is ${wide} pixels too wide`);
    await page.screenshot({path: path.join(folder, `${name}-${one.replace("/", "-")}.png`)});
  }
  return page;
}

/** Ends when the page is among what the search finds, and with an error otherwise. */
async function search(page) {
  // What is typed before the index is there is not looked for.
  await page.locator("input.md-search__input").click();
  await page.locator(".md-search-result__meta", {hasText: "Type to start searching"}).waitFor();
  await page.keyboard.type("digest-stale");
  await page.locator(".md-search-result__link[href*='diagnostics/digest-stale.html']").first().waitFor();
}

async function main() {
  const browser = await chromium.launch({executablePath, args: [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
    "--host-resolver-rules=MAP * ~NOTFOUND"]});
  const faults = [];
  const backgrounds = new Set();
  for (const [name, options] of Object.entries({
    wide: {viewport: {width: 1280, height: 900}},
    dark: {viewport: {width: 800, height: 900}, colorScheme: "dark"},
    phone: {viewport: {width: 390, height: 844}, isMobile: true, hasTouch: true},
  })) {
    const page = await visit(await browser.newContext({...options, offline: true}), name, faults);
    backgrounds.add(await page.evaluate(() => getComputedStyle(document.body).backgroundColor));
    if (name === "wide") await search(page);
  }
  if (backgrounds.size !== 2) faults.push("light and dark are not two colors");
  await browser.close();
  console.log(faults.join("\n") || `${pages.length} pages at three widths`);
  process.exitCode = faults.length ? 1 : 0;
}

main();
