// Opens a report in a browser and prints as JSON what is there to see:
//   node visit.js CHROMIUM REPORT QUESTIONS FOLDER
// QUESTIONS is a JSON array of [image, address]. Pictures of the page go to FOLDER.
"use strict";
const path = require("path");
const {chromium} = require(path.resolve("node_modules/playwright-core"));
const axe = path.resolve("node_modules/axe-core/axe.min.js");
const [executablePath, report, questions, folder] = process.argv.slice(2);

/** The text at an address: by its field, and with the pointer once it is wide enough. */
async function ask(page, image, address) {
  const field = page.locator("#go-" + image);
  await page.locator(`[data-map="${image}"][data-act="all"]`).click();
  await field.fill("0x" + address.toString(16));
  await field.press("Enter");
  const typed = await page.locator("#at-" + image).textContent();
  let view;
  for (let i = 0; i < 40; ++i) {
    view = (await page.locator("#view-" + image).textContent()).split(" to ").map(Number);
    if (view[1] - view[0] < 200) break;
    await page.locator(`[data-map="${image}"][data-act="in"]`).click();
  }
  const map = page.locator("#map-" + image);
  await map.scrollIntoViewIfNeeded();
  await page.mouse.move(0, 0);
  const box = await map.boundingBox();
  const part = (address + 0.5 - view[0]) / (view[1] - view[0] + 1);
  await page.mouse.move(box.x + 1 + part * (box.width - 2), box.y + box.height / 2);
  const pointed = await page.locator("#at-" + image).textContent();
  return {typed, pointed, title: await map.locator("title").textContent()};
}

async function violations(page) {
  await page.addScriptTag({path: axe});
  const found = await page.evaluate(() => axe.run());
  return found.violations.map((v) => v.id + ": " + v.nodes.map((n) => n.html).join(" | "));
}

async function main() {
  const browser = await chromium.launch({executablePath, args: [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync",
    "--host-resolver-rules=MAP * ~NOTFOUND"]});
  const seen = {errors: [], requests: [], answers: [], keyed: [], violations: {}, widths: {},
                beside: {}, paper: {}};
  for (const [name, options] of Object.entries({
    wide: {viewport: {width: 1280, height: 900}},
    dark: {viewport: {width: 1280, height: 900}, colorScheme: "dark"},
    phone: {viewport: {width: 390, height: 844}, isMobile: true, hasTouch: true},
  })) {
    const context = await browser.newContext({...options, offline: true});
    const page = await context.newPage();
    page.on("console", (message) => seen.errors.push(message.text()));
    page.on("pageerror", (error) => seen.errors.push(String(error)));
    page.on("request", (request) => seen.requests.push(request.url()));
    await page.goto("file://" + path.resolve(report));
    if (name === "wide") {
      for (const [image, address] of JSON.parse(questions))
        seen.answers.push(await ask(page, image, address));
      await page.locator('[data-map="1"][data-act="all"]').click();
      await page.locator("#go-1").fill("0x08000000");
      await page.locator("#go-1").press("Enter");
      // What is drawn where the script wrote two bytes, and four at the end.
      seen.drawn = await page.evaluate(() => [0x8001, 0xfffe].map((offset) => {
        const box = document.getElementById("map-1").getBoundingClientRect();
        return document.elementFromPoint(box.left + 1 + (box.width - 2) * offset / 0x10000,
                                         box.top + box.height / 2).getAttribute("class");
      }));
      await page.locator("#map-0").focus();
      await page.keyboard.press("Home");
      const before = await page.locator("#map-0").getAttribute("aria-valuenow");
      await page.keyboard.press("Shift+ArrowRight");
      const after = await page.locator("#map-0").getAttribute("aria-valuenow");
      seen.step = Number(after) - Number(before);
      // By keyboard alone: the ends of the second image, and an address by its distance from there.
      await page.locator("#map-1").focus();
      for (const keys of [["Home"], ["Home", "Shift+ArrowRight", "Shift+ArrowUp"], ["End"]]) {
        for (const key of keys) await page.keyboard.press(key);
        seen.keyed.push([await page.locator("#at-1").textContent(),
                         await page.locator("#map-1").getAttribute("aria-valuetext")]);
      }
      seen.pages = (await page.pdf()).length;
      await page.locator('[data-act="all"]').first().click();
    }
    seen.violations[name] = await violations(page);
    seen.widths[name] = await page.evaluate(
      () => document.documentElement.scrollWidth - document.documentElement.clientWidth);
    // A line of the script begins beside its number, however narrow the page is.
    seen.beside[name] = await page.evaluate(() => {
      const [number, text] = [".no", ".text"].map(
        (part) => document.querySelector("#line-4 " + part).getBoundingClientRect().top);
      return Math.abs(text - number) < 5;
    });
    await page.screenshot({path: path.join(folder, name + ".png"), fullPage: name !== "phone"});
    await page.emulateMedia({media: "print"});
    seen.paper[name] = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    await context.close();
  }
  await browser.close();
  console.log(JSON.stringify(seen));
}

main().catch((error) => { console.error(error); process.exit(1); });
