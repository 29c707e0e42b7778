// The mail sheet: everything that will leave the machine, to be seen and changed before it does.

import {part} from '../elements.js';
import {say, sayBytes} from '../words.js';
import {Body} from './body.js';
import {Sheet, button, field} from './sheet.js';

const longestRefusal = 600;

/** Hands a file over as a download. */
function download(blob, name) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}

export class Mail extends Sheet {
  constructor(device, id) {
    super(device, id, 'mail');
    this.main = button('main', 'mail.send', this.top, () => this.act('send'));
    this.to = field('mail.to', this.element);
    Object.assign(this.to, {type: 'text', inputMode: 'email', autocomplete: 'off', autocapitalize: 'off', spellcheck: false});
    this.subject = field('mail.subject', this.element);
    this.body = new Body(this.element, event => this.keyInBody(event));
    this.attachments = part('ul', 'attachments', this.element);
    this.attachments.setAttribute('aria-label', say('mail.attachments'));
    const foot = part('div', 'foot', this.element);
    this.message = part('p', 'message', foot);
    this.message.setAttribute('role', 'status');
    this.save = button('save', 'mail.save', foot, () => this.act('save'));
  }

  fill({to, subject, attachments, sends}) {
    this.to.value = to ?? '';
    this.subject.value = subject ?? '';
    this.first = this.fields;
    this.main.hidden = !sends;
    this.showAttachments(attachments ?? []);
    this.body.open(`/mail/body?node=${this.id}`);
  }

  showAttachments(attachments) {
    this.attachments.hidden = attachments.length === 0;
    attachments.forEach(({name, bytes}, index) => {
      const link = part('a', 'attachment', part('li', '', this.attachments));
      const values = {name, size: sayBytes(bytes)};
      Object.assign(link, {href: `/mail/attachment?node=${this.id}&index=${index}`, target: '_blank', rel: 'noopener'});
      link.textContent = say('mail.attachment', values);
      link.setAttribute('aria-label', say('mail.seeAttachment', values));
    });
  }

  enter() {
    this.body.focus();
  }

  keyInBody(event) {
    if (event.key === 'Escape') this.cancel();
  }

  get fields() {
    return JSON.stringify([this.to.value, this.subject.value]);
  }

  /** Asks once before anything that was written is lost. */
  cancel() {
    const wasEdited = this.body.wasEdited || this.fields !== this.first;
    const isNews = wasEdited && this.message.textContent !== say('mail.lost') && !this.isBusy;
    if (isNews) this.message.textContent = say('mail.lost');
    else super.cancel();
  }

  setBusy(isBusy) {
    this.isBusy = isBusy;
    this.main.disabled = isBusy;
    this.save.disabled = isBusy;
  }

  /** The host closes the sheet when the mail has gone; a draft is kept once the browser has it. */
  async act(action) {
    this.setBusy(true);
    this.message.textContent = say(action === 'send' ? 'mail.sending' : 'mail.saving');
    try {
      const answer = await this.post(action);
      if (!answer.ok) throw new Error((await answer.text()).slice(0, longestRefusal));
      if (action === 'save') await this.keep(answer);
      this.message.textContent = '';
    } catch (problem) {
      const isPlain = problem.message && !/^\s*</.test(problem.message) && !(problem instanceof TypeError);
      this.message.textContent = isPlain ? problem.message : say('mail.notSent');
    }
    this.setBusy(false);
  }

  post(action) {
    const body = JSON.stringify({to: this.to.value, subject: this.subject.value, html: this.body.html});
    const headers = {'Content-Type': 'application/json'};
    return fetch(`/mail?node=${this.id}&action=${action}`, {method: 'POST', headers, body});
  }

  async keep(answer) {
    const name = this.subject.value.replace(/[^\p{L}\p{N} _-]+/gu, ' ').trim() || say('mail.draft');
    download(await answer.blob(), `${name}.eml`);
    this.send('finish');
  }
}
