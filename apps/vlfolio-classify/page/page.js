"use strict";
{
    const rows = [...document.querySelectorAll("#tree li")];
    const positions = new Map(rows.map((row, position) => [row, position]));
    const above = rows.map((row) => positions.get(row.parentElement.closest("li")));
    const folds = [...document.querySelectorAll("#tree details")];
    const search = document.getElementById("search");
    const status = document.getElementById("status");
    const total = status.textContent;
    let texts;
    let openBefore;

    // Accents are removed, because a keyboard may lack them, and letters are the same composed or not.
    const plain = (text) => text.normalize("NFKD").replace(/\p{M}/gu, "").toLowerCase();

    const isOfType = (row, type) => type === "" || row.classList.contains(type);

    const openAll = (isOpen) => folds.forEach((fold) => (fold.open = isOpen));

    // For each row: 0 for hidden, 1 for shown because of a row below it, 2 for found.
    function marks(words, type) {
        const found = new Uint8Array(rows.length);
        for (let i = rows.length - 1; i >= 0; --i) {
            if (isOfType(rows[i], type) && words.every((word) => texts[i].includes(word)))
                found[i] = 2;
            if (found[i] && above[i] !== undefined && !found[above[i]])
                found[above[i]] = 1;
        }
        return found;
    }

    function showAll() {
        for (const row of rows) {
            row.hidden = false;
            row.classList.remove("context");
        }
        if (openBefore)
            folds.forEach((fold, i) => (fold.open = openBefore[i]));
        openBefore = undefined;
        status.textContent = total;
    }

    function showOnly(words, type) {
        texts ??= rows.map((row) => plain(row.querySelector("bdi").textContent));
        openBefore ??= folds.map((fold) => fold.open);
        const found = marks(words, type);
        rows.forEach((row, i) => {
            row.hidden = found[i] === 0;
            row.classList.toggle("context", found[i] === 1);
        });
        for (const fold of folds)
            fold.open = fold.querySelector("li:not([hidden])") !== null;
        const count = found.filter((mark) => mark === 2).length;
        status.textContent = `${count.toLocaleString("en")} of ${total}`;
    }

    function update() {
        const words = plain(search.value).split(/\s+/).filter((word) => word !== "");
        const type = document.querySelector("input[name=type]:checked").value;
        if (words.length === 0 && type === "")
            showAll();
        else
            showOnly(words, type);
    }

    let timer;
    search.addEventListener("input", () => {
        clearTimeout(timer);
        timer = setTimeout(update, 120);
    });
    for (const choice of document.querySelectorAll("input[name=type]"))
        choice.addEventListener("change", update);
    for (const [id, isOpen] of [["unfold", true], ["fold", false]])
        document.getElementById(id).addEventListener("click", () => openAll(isOpen));

    // Older browsers would not print what is folded.
    let openOnScreen;
    addEventListener("beforeprint", () => {
        openOnScreen = folds.map((fold) => fold.open);
        openAll(true);
    });
    addEventListener("afterprint", () => folds.forEach((fold, i) => (fold.open = openOnScreen[i])));

    for (const controls of document.querySelectorAll(".controls"))
        controls.hidden = false;
}
